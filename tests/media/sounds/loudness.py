"""Measures the voice of a media folder, and both sounds together, with ffmpeg's meter of EBU R 128.

Usage: loudness.py SET
All phrases of the voice are equally loud within 1 LU, and growing from verse to verse. Mixed as the
program asks for it, the voice at 1.5 and the bubbles at 0.2 of their loudness, the true peak stays 1 dB
below full scale. The exit status is 1 when that is not so.
"""
import pathlib
import re
import subprocess
import sys

PHRASE = 3.375  # seconds
FIRST = 3.0  # where the first phrase begins
PHRASES = 32
VERSE = 8  # phrases


def meter(*arguments):
    """What ffmpeg's meter says at its end."""
    text = subprocess.run(["ffmpeg", "-nostats", *arguments, "-f", "null", "-"], check=True,
                          stderr=subprocess.PIPE, text=True).stderr
    return text[text.rindex("Summary:"):]


def loudness(voice, phrase):
    summary = meter("-ss", str(FIRST + phrase * PHRASE), "-t", str(PHRASE), "-i", voice, "-af",
                    "ebur128")
    return float(re.search(r"I: +(-[\d.]+) LUFS", summary).group(1))


def main(media_set):
    folder = pathlib.Path(media_set) / "sound"
    voice, bubbles = folder / "magpie_vocal.ogg", folder / "bubbles_sound.ogg"
    phrases = [loudness(voice, phrase) for phrase in range(PHRASES)]
    verses = [sum(phrases[i:i + VERSE]) / VERSE for i in range(0, PHRASES, VERSE)]
    mixed = meter("-i", voice, "-stream_loop", "-1", "-i", bubbles, "-filter_complex",
                  "[0]volume=1.5[a];[1]volume=0.2[b];"
                  "[a][b]amix=duration=first:normalize=0,ebur128=peak=true")
    peak = float(re.search(r"Peak: +(-?[\d.]+) dBFS", mixed).group(1))
    spread = max(phrases) - min(phrases)
    print(f"phrases: {min(phrases):.1f} to {max(phrases):.1f} LUFS")
    print("verses:", ", ".join(f"{verse:.2f}" for verse in verses), "LUFS")
    print(f"true peak with the bubbles: {peak:.1f} dBTP")
    return 0 if spread <= 1 and verses == sorted(verses) and peak < -1 else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
