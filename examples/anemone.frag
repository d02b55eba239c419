#version 120
// Colors crests and troughs, and lets the rim glow.

varying float wave;
varying vec3 facing;

void main()
{
    vec3 trough = vec3(0.15, 0.05, 0.35);
    vec3 crest = vec3(1.0, 0.5, 0.45);
    float towards = max(normalize(facing).z, 0.0);
    vec3 body = mix(trough, crest, smoothstep(-0.5, 0.6, wave)) * (0.35 + 0.65 * towards);
    gl_FragColor = vec4(body + vec3(0.1, 0.6, 0.7) * pow(1.0 - towards, 3.0), 1.0);
}
