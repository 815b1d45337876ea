#!/usr/bin/env python3
"""Turns the benchmark's raw timings into a markdown table of ratios and a CSV.

Ratios: Pixmill's median time divided by the fastest other tool's (below 1 means Pixmill was
faster), and by cp's where the group has cp."""

import csv
import os
import platform
import subprocess
import sys
from collections import OrderedDict


def machine():
    cpu = "unknown CPU"
    try:
        for line in open("/proc/cpuinfo"):
            if line.startswith("model name"):
                cpu = line.split(":", 1)[1].strip()
                break
    except OSError:
        pass
    cores = os.cpu_count()
    mem = ""
    try:
        for line in open("/proc/meminfo"):
            if line.startswith("MemTotal"):
                mem = "%.0f GiB" % (int(line.split()[1]) / 1024 / 1024)
    except OSError:
        pass
    return "%s, %s cores, %s, %s" % (cpu, cores, mem, platform.platform())


def megabytes(n):
    """Three figures, without an exponent: 1070, 72.0, 1.97, 0.00948."""
    if not n:
        return ""
    mb = n / 1e6
    return "%.0f" % mb if mb >= 100 else "%.3g" % mb


def main(raw, md_path, csv_path):
    groups = OrderedDict()
    with open(raw) as f:
        for line in f:
            fields = line.rstrip("\n").split("\t")
            group, tool, median, peak = fields[:4]
            written = int(fields[4]) if len(fields) > 4 and fields[4].isdigit() else 0
            groups.setdefault(group, []).append(
                (tool, float(median), int(peak) if peak.isdigit() else 0, written))

    rows = []
    for group, tools in groups.items():
        others = [t for t in tools if not t[0].startswith("pixmill") and t[0] != "cp"]
        fastest = min(others, key=lambda t: t[1]) if others else None
        cp = next((t for t in tools if t[0] == "cp"), None)
        for tool, median, peak, written in tools:
            ours = tool.startswith("pixmill")
            rows.append({
                "group": group, "tool": tool, "median_s": "%.4f" % median,
                "peak_mib": "%.1f" % (peak / 1024.0),
                "output_mb": megabytes(written),
                "vs_fastest_other": ("%.2f" % (median / fastest[1])) if ours and fastest else "",
                "fastest_other": fastest[0] if ours and fastest else "",
                "vs_cp": ("%.2f" % (median / cp[1])) if ours and cp else "",
            })

    with open(csv_path, "w", newline="") as f:
        w = csv.DictWriter(f, fieldnames=list(rows[0].keys()) if rows else ["group"])
        w.writeheader()
        w.writerows(rows)

    with open(md_path, "w") as f:
        f.write("Measured on: %s\n\n" % machine())
        f.write("| Workload | Tool | Median (s) | Peak memory (MiB) | Output (MB) | Pixmill ÷ fastest other | Pixmill ÷ cp |\n")
        f.write("|---|---|---:|---:|---:|---:|---:|\n")
        for r in rows:
            vs = ("%s (%s)" % (r["vs_fastest_other"], r["fastest_other"])) if r["vs_fastest_other"] else ""
            f.write("| %s | %s | %s | %s | %s | %s | %s |\n" % (
                r["group"], r["tool"], r["median_s"], r["peak_mib"], r["output_mb"], vs, r["vs_cp"]))


if __name__ == "__main__":
    main(*sys.argv[1:4])
