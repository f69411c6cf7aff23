#!/usr/bin/env python3
"""Writes a simulated-host topology as large as the driver allows.

    gen_topology.py OUT.json [--arrays N] [--vluns N] [--controllers N]
                             [--paths-per-controller N] [--hbas N]

Defaults: 128 arrays, 16384 VLUNs (each on one disk, spread evenly over the
arrays), 2 controllers of 4 paths per array, 8 FC HBAs. The output is the
same for the same arguments. Run cvadm on it with
CVSIM_TOPOLOGY=OUT.json cvadm-sim --setup (see docs/simulator.md).
"""

import argparse
import json
import sys

MAX_ARRAYS = 128
MAX_VLUNS = 16384
MAX_CONTROLLERS = 16
MAX_CONTROLLER_PATHS = 8
MAX_HBAS = 64
GIB = 1 << 30

# Rare states, spread over the host by ID so that every kind appears at
# any size: (divisor, remainder) pairs.
PATH_TIMEOUT = (97, 5)
PATH_BUSY = (89, 7)
PATH_DOWN = (101, 3)
PATH_DISABLED = (103, 11)
DISK_UNAVAILABLE = (1009, 17)
VLUN_PE = (512, 511)


def hits(n, rule):
    return n % rule[0] == rule[1]


def device_name(ordinal):
    """'sd' and a bijective base-26 number: 0 -> sdb, 24 -> sdz, 25 -> sdaa."""
    n = ordinal + 2
    letters = ""
    while n > 0:
        n -= 1
        letters = chr(ord("a") + n % 26) + letters
        n //= 26
    return "sd" + letters


def controller_entry(array_id, tpg):
    entry = {"id": tpg}
    if array_id % 3 == 2:  # named controllers; the others are named by engine and letter, or by number
        entry["name"] = "CTE%d.%s" % (tpg // 2, "AB"[tpg % 2])
    return entry


def build_arrays(args):
    arrays = []
    for a in range(args.arrays):
        array = {
            "id": a,
            "name": "gen-array-%03d" % a,
            "sn": "2102359GEN%010d" % a,
            "vendor": "CORVANE",
            "product": "Dorado5000 V6",
            "revision": "6.1",
            "driver": "alua",
        }
        if a % 3 == 0:
            array["capability_bits"] = [24]
        array["flag_bytes"] = [1, 1, 0]
        array["controllers"] = [controller_entry(a, c) for c in range(args.controllers)]
        arrays.append(array)
    return arrays


def build_hbas(args):
    return [
        {"id": h, "type": "FC", "wwn": "21:00:00:24:ff:4c:%02x:%02x" % (h >> 8, h & 0xFF), "host": 3 + h,
         "driver": "QLogic qla2xxx"}
        for h in range(args.hbas)
    ]


def build_paths(args):
    paths = []
    pid = 0
    for a in range(args.arrays):
        for c in range(args.controllers):
            for k in range(args.paths_per_controller):
                path = {
                    "id": pid,
                    "array": a,
                    "controller": c,
                    "hba": pid % args.hbas,
                    "target": "20:%02x:00:1b:32:%02x:%02x:%02x" % (k, a, c, k),
                    "port_id": "CTE%d.%s.IOM0.P%d" % (c // 2, "AB"[c % 2], k),
                    "io_retry": {"base": pid % 13, "per_hour": pid % 3},
                    "latency_ms": {"low": 1, "avg": 2 + pid % 5, "high": 20 + pid % 50},
                }
                if hits(pid, PATH_TIMEOUT):
                    path["io_state"] = "timeout"
                elif hits(pid, PATH_BUSY):
                    path["io_state"] = "busy"
                if hits(pid, PATH_DOWN):
                    path["link"] = "down"
                    path["path_faults"] = {"base": 1 + pid % 9}
                if hits(pid, PATH_DISABLED):
                    path["enabled"] = False
                paths.append(path)
                pid += 1
    return paths


def build_disks_and_vluns(args):
    disks = []
    vluns = []
    per_array, extra = divmod(args.vluns, args.arrays)
    vid = 0
    for a in range(args.arrays):
        for local in range(per_array + (1 if a < extra else 0)):
            disk = {
                "id": vid,
                "array": a,
                "name": "lun_%05d" % vid,
                "wwn": "62c7f1a1%08x%016x" % (a, vid),
                "capacity": (1 + vid % 7) * 64 * GIB,
                "owner": vid % args.controllers,
                "host_lun": local + 1,
                "dev_lun_id": local,
            }
            if hits(vid, DISK_UNAVAILABLE):
                disk["unavailable"] = True
            disks.append(disk)
            vlun = {"id": vid, "type": "pe" if hits(vid, VLUN_PE) else "ordinary", "disks": [vid],
                    "device": device_name(vid)}
            vluns.append(vlun)
            vid += 1
    return disks, vluns


def parse_args(argv):
    p = argparse.ArgumentParser(description="Write the largest topology the simulated driver allows.")
    p.add_argument("out", help="file to write (- for standard output)")
    p.add_argument("--arrays", type=int, default=MAX_ARRAYS, help="1..128 (default 128)")
    p.add_argument("--vluns", type=int, default=MAX_VLUNS, help="--arrays..16384 (default 16384)")
    p.add_argument("--controllers", type=int, default=2, help="per array, 1..16 (default 2)")
    p.add_argument("--paths-per-controller", type=int, default=4, help="1..8 (default 4)")
    p.add_argument("--hbas", type=int, default=8, help="1..64 (default 8)")
    args = p.parse_args(argv)
    limits = [
        ("--arrays", args.arrays, 1, MAX_ARRAYS),
        ("--vluns", args.vluns, args.arrays, MAX_VLUNS),
        ("--controllers", args.controllers, 1, MAX_CONTROLLERS),
        ("--paths-per-controller", args.paths_per_controller, 1, MAX_CONTROLLER_PATHS),
        ("--hbas", args.hbas, 1, MAX_HBAS),
    ]
    for name, value, low, high in limits:
        if not low <= value <= high:
            p.error("%s %d: expected %d..%d" % (name, value, low, high))
    return args


def write(out, doc):
    """One object per line: large, but still greppable."""
    out.write("{\n")
    keys = list(doc)
    for i, key in enumerate(keys):
        value = doc[key]
        tail = ",\n" if i + 1 < len(keys) else "\n"
        if isinstance(value, list):
            out.write('  "%s": [\n' % key)
            for j, item in enumerate(value):
                out.write("    " + json.dumps(item, separators=(",", ":")))
                out.write(",\n" if j + 1 < len(value) else "\n")
            out.write("  ]" + tail)
        else:
            out.write('  "%s": %s%s' % (key, json.dumps(value), tail))
    out.write("}\n")


def main(argv):
    args = parse_args(argv)
    disks, vluns = build_disks_and_vluns(args)
    doc = {
        "driver": {"version": [21, 1, 30], "started": 1794960000},
        "workers": [{"name": "cv_path_check", "age_seconds": 2}, {"name": "cv_io_statistic", "age_seconds": 1}],
        "hbas": build_hbas(args),
        "arrays": build_arrays(args),
        "paths": build_paths(args),
        "disks": disks,
        "vluns": vluns,
    }
    if args.out == "-":
        write(sys.stdout, doc)
        return 0
    try:
        with open(args.out, "w", encoding="utf-8") as f:
            write(f, doc)
    except OSError as e:
        print("gen_topology.py: %s: %s" % (args.out, e.strerror), file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
