"""From a bitmap file to black and white by Pillow's convert('1'). Prints the median seconds of processor time."""

import statistics
import sys
import time

from PIL import Image

WARM_ROUNDS, ROUNDS = 1, 7


def seconds_of_a_round(path):
    start = time.process_time()
    with Image.open(path) as picture:
        picture.convert("1")
    return time.process_time() - start


rounds = [seconds_of_a_round(sys.argv[1]) for _ in range(WARM_ROUNDS + ROUNDS)]
print(f"{statistics.median(rounds[WARM_ROUNDS:]):.9f}")
