#version 120
// Lets waves run over a sphere, each point moving along its normal.

uniform float time; // seconds

varying float wave;  // -1 in the troughs to 1 on the crests
varying vec3 facing; // normal, eye frame; the sphere's own, which is near enough

void main()
{
    vec3 direction = gl_Normal;
    wave = sin(9.0 * direction.x + time) * sin(9.0 * direction.y - 1.3 * time) *
           sin(9.0 * direction.z + 0.7 * time);
    facing = gl_NormalMatrix * gl_Normal;
    gl_Position = gl_ModelViewProjectionMatrix * (gl_Vertex + vec4(0.08 * wave * direction, 0.0));
}
