"""The Mandelbrot set with NumPy arrays: how fast the device is, and the picture as text.

    python mandelbrot.py        on the device that MERO_DEVICE means, else on the first
"""

import numpy as np
import vorn_mero as mero

SOURCE = """
kernel void mandelbrot(global ushort* turns, float left, float top, float step)
{
    float const x = left + step * get_global_id(0), y = top + 2 * step * get_global_id(1);
    float re = 0, im = 0;
    ushort turn = 0;
    for (; turn < LIMIT && re * re + im * im < 4; ++turn) {
        float const next = re * re - im * im + x;
        im = 2 * re * im + y;
        re = next;
    }
    turns[get_global_id(1) * get_global_size(0) + get_global_id(0)] = turn;
}
"""
WIDTH, HEIGHT, LIMIT = 76, 24, 1000


def in_numpy(left, top, step):
    """The same on the host, for comparison."""
    step = np.float32(step)
    x = np.float32(left) + step * np.arange(WIDTH, dtype=np.float32)
    y = np.float32(top) + 2 * step * np.arange(HEIGHT, dtype=np.float32)
    re, im = np.zeros((HEIGHT, WIDTH), np.float32), np.zeros((HEIGHT, WIDTH), np.float32)
    turns = np.zeros((HEIGHT, WIDTH), np.uint16)
    for _ in range(LIMIT):
        inside = re * re + im * im < 4
        turns += inside
        re, im = np.where(inside, re * re - im * im + x, re), np.where(inside, 2 * re * im + y[:, None], im)
    return turns


def main():
    gpu = mero.Session()
    mandelbrot = gpu.build(SOURCE, defines={"LIMIT": LIMIT})["mandelbrot"]
    turns = gpu.empty((HEIGHT, WIDTH), np.uint16)
    event = mandelbrot((WIDTH, HEIGHT), turns, -2.2, -1.2, 0.04)
    picture = turns.read(np.empty((HEIGHT, WIDTH), np.uint16))
    shades = np.frombuffer(b" .:-=+*#%@", "S1")
    for line in shades[np.minimum(picture // 3, len(shades) - 1)]:
        print(line.tobytes().decode().rstrip())
    differ = (picture != in_numpy(-2.2, -1.2, 0.04)).mean()
    print(f"{gpu.device.name}: {event.time() / 1e6:.2f} ms; {differ:.1%} of the points differ from NumPy's")
    if differ > 0.02:  # at the rim the rounding of a fused multiplication decides
        raise SystemExit("wrong")


main()
