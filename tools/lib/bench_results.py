"""The results of one run of the benchmarks: times by row and contestant, and how they came about."""
import collections
import csv
import os
import pathlib
import subprocess
import time

OURS = "ulkch"
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

Time = collections.namedtuple("Time", "ns bytes_per_second")


def output(*command):
    return subprocess.run(command, cwd=ROOT, capture_output=True, text=True).stdout.strip()


def facts(lane, command):
    """What a reader of the figures must know about the run, at its start."""
    processor = [line.split(":", 1)[1].strip() for line in output("lscpu").splitlines() if "Model name" in line]
    return {
        "Command": command,
        "Date": time.strftime("%Y-%m-%d", time.gmtime()),
        "Commit": output("git", "rev-parse", "--short", "HEAD"),
        "Lane": lane,
        "Processor": f"{processor[0]}, {os.cpu_count()} processors",
        "Compiler": output("g++", "--version").split("\n")[0],
        "Load average at the start": " ".join(f"{load:.1f}" for load in os.getloadavg()),
    }


class Results:
    def __init__(self, rows, about):
        self.rows = rows  # name of the row -> contestant -> Time, in the order of the program
        self.about = about

    @staticmethod
    def of_benchmarks(benchmarks):
        """The medians of what Google Benchmark writes."""
        rows = {}
        for result in sorted(benchmarks, key=lambda each: each["family_index"]):
            if result["aggregate_name"] != "median":
                continue
            wall = result["run_name"].endswith("/real_time")
            name, contestant = result["run_name"].removesuffix("/real_time").rsplit("/", 1)
            ns = result["real_time" if wall else "cpu_time"]
            rows.setdefault(name, {})[contestant] = Time(ns, result.get("bytes_per_second", 0))
        return Results(rows, {})

    @staticmethod
    def read(path):
        with path.open() as lines:
            about = {}
            for line in lines:
                if not line.startswith("# "):
                    break
                name, value = line[2:].rstrip("\n").split(": ", 1)
                about[name] = value
            rows = {}
            for name, contestant, ns, rate in csv.reader(lines):
                rows.setdefault(name, {})[contestant] = Time(float(ns), float(rate))
        return Results(rows, about)

    def write(self, path):
        with path.open("w") as out:
            out.writelines(f"# {name}: {value}\n" for name, value in self.about.items())
            out.write("row,contestant,ns,bytes_per_second\n")
            for name, contestants in self.rows.items():
                out.writelines(f"{name},{contestant},{time.ns:.4g},{time.bytes_per_second:.4g}\n"
                               for contestant, time in contestants.items())

    def print_table(self, out):
        print(f"{'row':40} {'ns':>12} {'GB/s':>7}  peers: ns (theirs / ours)", file=out)
        for name, contestants in self.rows.items():
            ours = contestants[OURS]
            peers = "  ".join(f"{peer} {theirs.ns:.1f} ({theirs.ns / ours.ns:.2f})"
                              for peer, theirs in contestants.items() if peer != OURS)
            print(f"{name:40} {ours.ns:12.1f} {ours.bytes_per_second / 1e9:7.2f}  {peers}", file=out)
