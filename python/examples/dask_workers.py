"""One job over several processes, or machines, by Dask: each worker has an OpenCL device of its own.

    python dask_workers.py [WORKERS]            worker processes on this machine, 2 by default
    python dask_workers.py --scheduler ADDRESS  the workers of a cluster that runs: dask scheduler, dask worker

Counts the points of random pairs that are within a circle, in parts, and merges the counts to an estimate of pi. A worker
takes one of the devices that MERO_DEVICE means, in turn. Where there are fewer than workers it takes a part of one, a
sub-device: so two workers share a processor without being in each other's way.
"""

import argparse
import os

import numpy as np
import vorn_mero as mero
from distributed import Client, LocalCluster, Worker, WorkerPlugin, get_worker

SOURCE = """
ulong next(ulong state) { return state * 6364136223846793005UL + 1442695040888963407UL; }

kernel void count(global uint* within, ulong seed, uint pairs)
{
    ulong state = next(seed + get_global_id(0) * 0x9E3779B97F4A7C15UL);
    uint found = 0;
    for (uint i = 0; i < pairs; ++i) {
        state = next(state);
        float const x = (float)(state >> 40) / (1 << 24);
        state = next(state);
        float const y = (float)(state >> 40) / (1 << 24);
        found += x * x + y * y < 1;
    }
    within[get_global_id(0)] = found;
}
"""
ITEMS, PAIRS, PARTS = 4096, 500, 16


def devices_for(workers):
    """The devices there are, or parts of them if there are too few."""
    whole = mero.find_devices(os.environ.get("MERO_DEVICE", ""))
    parts = []
    for each in whole:
        units = each.max_compute_units * len(whole) // workers
        parts += each.partition_equally(units) if 0 < units < each.max_compute_units else [each]
    return whole if len(whole) >= workers else parts


class OwnDevice(WorkerPlugin):
    """Gives a worker, when it starts, a session on a device of its own and the kernel; they stay in its process."""

    def __init__(self, order):
        self.order = order  # of the workers' addresses

    def setup(self, worker: Worker):
        devices = devices_for(len(self.order))
        self.number = self.order.index(worker.address)
        self.gpu = mero.Session(devices[self.number % len(devices)])
        self.count = self.gpu.build(SOURCE)["count"]
        worker.own_device = self


def part_of_job(seed):
    """Runs in a worker. Returns who did it, and how many points are within."""
    own = get_worker().own_device
    within = own.gpu.empty(ITEMS, np.uint32)
    own.count(ITEMS, within, seed, PAIRS)
    device = own.gpu.device
    what = f"{device.name}, compute units: {device.max_compute_units}{'' if device.is_root else ', a sub-device'}"
    return f"worker {own.number}: {what}", int(within.read(np.empty(ITEMS, np.uint32)).sum())


def main():
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("workers", nargs="?", type=int, default=2)
    options.add_argument("--scheduler")
    given = options.parse_args()
    cluster = given.scheduler or LocalCluster(n_workers=given.workers, threads_per_worker=1, dashboard_address=None)
    with Client(cluster) as client:
        order = sorted(client.scheduler_info(n_workers=-1)["workers"])
        client.register_plugin(OwnDevice(order))
        workers = {address: [] for address in order}
        for i in range(PARTS):
            workers[order[i % len(order)]].append(i)
        futures = [client.submit(part_of_job, seed, workers=[address], pure=False)
                   for address, seeds in workers.items() for seed in seeds]
        results = client.gather(futures)
        if not given.scheduler:
            client.retire_workers()
    if not given.scheduler:
        cluster.close()
    for name in sorted({name for name, _ in results}):
        print(f"{name}: {sum(1 for each, _ in results if each == name)} parts")
    pi = 4 * sum(found for _, found in results) / (PARTS * ITEMS * PAIRS)
    print(f"pi is about {pi:.4f}")
    if abs(pi - np.pi) > 1e-3:
        raise SystemExit("wrong")


if __name__ == "__main__":  # the workers import this file
    main()
