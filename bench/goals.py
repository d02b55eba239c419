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
]
