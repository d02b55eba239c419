"""What the benchmarks are to reach.

A goal compares the project's own way of a job, "kelpix", with another way. Jobs, ways and items
have the names that the programs in this folder give them.
"""
from dataclasses import dataclass


@dataclass
class Goal:
    job: str
    against: str = ""  # a way of the job, or several ("glm, cglm"): then the fastest of them
    at_most: float = 1.0  # kelpix / against; with nothing to go against, kelpix per item
    stretch: float | None = None  # where it could get to
    instructions: bool = False  # judged by instructions even where others are judged by time
    net_of: str = ""  # a way whose cost is in both sides, and subtracted from both
    growth_from: str = ""  # the job with a tenth of the items: the exponent of the growth from there
    quantity: str = "time"  # what the job's numbers are, when they are not nanoseconds


GOALS = [
    Goal("flock tick, 100 fish and 3 figures", "reference", 0.45, instructions=True),
    Goal("flock tick, 1,000 fish", "reference", 0.5),
    Goal("flock tick, 10,000 fish", "reference", 0.5, stretch=0.15),
    Goal("flock tick, 10,000 fish", growth_from="flock tick, 1,000 fish", at_most=2.1),
    Goal("walk over 209 nodes", at_most=650, stretch=400, instructions=True),
    *(Goal(f"{walk} walk, {nodes} nodes", "openscenegraph", 1.0)
      for walk in ("update", "draw", "event") for nodes in (100, 1000, 10000)),
    *(Goal(f"{walk} walk, 10000 nodes", growth_from=f"{walk} walk, 1000 nodes", at_most=1.2)
      for walk in ("update", "draw", "event")),
    Goal("30 bubble outlines", "reference", 0.2, net_of="limit"),
    Goal("do_multiply", "cglm", 1.15),
    Goal("do_inverse", "glm, cglm", 1.1, stretch=1.3),
    Goal("bodies of the figures", "limit", 1.1),
    Goal("bodies of the figures, memory", "limit", 1.02, quantity="bytes"),
    Goal("bodies of the figures, points deformed", at_most=3 * 240 * 16 * 17, quantity="points"),
    Goal("first frame", "limit", 1.15, net_of="window"),
    Goal("frame, CPU of the process", "limit", 1.15),
    Goal("frame, CPU of the process", "OpenSceneGraph", 1.2),
    Goal("frame, CPU of the main thread", "limit", 1.6),
    Goal("OBJ, 1,002,528 triangles", "tinyobjloader", 1 / 2.2, stretch=1 / 4),
    Goal("OBJ, 1,002,528 triangles", "assimp", 1 / 4),
    Goal("OBJ, 2,000 usemtl", "tinyobjloader", 1 / 1.2),
    Goal("OBJ, 20,000 usemtl", "tinyobjloader", 1 / 1.2),
    Goal("OBJ, 20,000 usemtl", growth_from="OBJ, 2,000 usemtl", at_most=1.1),
    Goal("JPEG, 2048 x 2048", "limit", 1 / 0.95),
    Goal("JPEG, 2048 x 2048", "stb_image", 1),
    Goal("PNG, 2048 x 2048, RGBA", "libspng", 1 / 0.97),
    Goal("PNG, 2048 x 2048, RGBA", "stb_image", 1),
    Goal("Ogg Vorbis, 60 s of stereo", "limit", 1.08),
    # Out of reach: FTGL keeps all glyphs in one texture and makes no lists, see docs/performance.md.
    Goal("font, height 12", "ftgl", 0.5),
    Goal("font, height 48", "ftgl", 0.5),
    Goal("font, height 12", "limit", 1.05),
    Goal("font, height 48", "limit", 1.05),
]
