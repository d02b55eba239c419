"""What the benchmarks are to reach.

A goal compares the project's own contender in a job, "kelpix", with another one. Jobs, contenders
and items have the names that the programs in this folder give them.
"""
from dataclasses import dataclass


@dataclass
class Goal:
    job: str
    against: str = ""  # a contender, or several ("glm, cglm"): then the fastest of them
    at_most: float = 1.0  # kelpix / against; with no other contender, kelpix per item
    stretch: float | None = None  # what could be reached
    count: str = ""  # "instructions" or "misses": judged by these, even where others are judged by time
    baseline: str = ""  # a contender: its cost is common to both sides, and subtracted from each
    growth_from: str = ""  # the job with a tenth of the items: the exponent of the growth from there


GOALS = [
    Goal("flock tick, 100 fish and 3 figures", "reference", 0.45, count="instructions"),
    Goal("flock tick, 1,000 fish", "reference", 0.35),
    Goal("flock tick, 10,000 fish", "reference", 0.35, stretch=0.15),
    Goal("flock tick, 10,000 fish", "reference", 0.2, count="misses"),
    Goal("flock tick, 10,000 fish", growth_from="flock tick, 1,000 fish", at_most=2.1),
    Goal("traversal of 209 nodes", at_most=650, stretch=400, count="instructions"),
    *(Goal(f"{kind} traversal, {nodes} nodes", "openscenegraph", 1.0)
      for kind in ("update", "draw", "event") for nodes in (100, 1000, 10000)),
    *(Goal(f"{kind} traversal, 10000 nodes", growth_from=f"{kind} traversal, 1000 nodes",
           at_most=1.2)
      for kind in ("update", "draw", "event")),
    Goal("30 bubble outlines", "reference", 0.2, baseline="lower bound"),
    Goal("do_multiply", "cglm", 1.15),
    Goal("do_inverse", "glm", 1.0),
    Goal("bodies of the figures", "lower bound", 1.1),
    Goal("bodies of the figures, memory", "lower bound", 1.02),
    Goal("bodies of the figures, points deformed", at_most=3 * 240 * 16 * 17),
    Goal("first frame", "lower bound", 1.15, baseline="window"),
    Goal("frame, CPU of the process", "lower bound", 1.15),
    Goal("frame, CPU of the process", "OpenSceneGraph", 1.2),
    Goal("frame, CPU of the main thread", "same calls", 1.08),
    Goal("frame, CPU of the main thread", "lower bound", 1.6),
    Goal("OBJ, 1,002,528 triangles", "tinyobjloader", 1 / 2.2, stretch=1 / 4),
    Goal("OBJ, 1,002,528 triangles", "assimp", 1 / 4),
    Goal("OBJ, 2,000 usemtl", "tinyobjloader", 1 / 1.2),
    Goal("OBJ, 20,000 usemtl", "tinyobjloader", 1 / 2),
    Goal("OBJ, 20,000 usemtl, memory busy", "tinyobjloader", 1 / 2),
    Goal("OBJ, 20,000 usemtl", growth_from="OBJ, 2,000 usemtl", at_most=1.1),
    Goal("JPEG, 2048 x 2048", "lower bound", 1 / 0.95),
    Goal("JPEG, 2048 x 2048", "stb_image", 1),
    Goal("PNG, 2048 x 2048, RGBA", "libspng", 1 / 0.97),
    Goal("PNG, 2048 x 2048, RGBA", "stb_image", 1),
    Goal("Ogg Vorbis, 60 s of stereo", "lower bound", 1.08),
    Goal("font, height 12", "lower bound", 1.05),
    Goal("font, height 48", "lower bound", 1.05),
]
