"""The results of one run of the benchmarks: times by row and contestant, and how they came about."""
import collections
import os
import pathlib
import re
import subprocess
import time

OURS = "ulkch"
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

Time = collections.namedtuple("Time", "ns bytes_per_second")


def output(*command):
    return subprocess.run(command, cwd=ROOT, capture_output=True, text=True).stdout.strip()


def load():
    return " ".join(f"{average:.1f}" for average in os.getloadavg())


def facts(command, lane, packages):
    """What a reader of the figures must know about the run, at its start."""
    processor = re.search(r"^model name\s*: *(.*)", pathlib.Path("/proc/cpuinfo").read_text(), re.MULTILINE)
    return {
        "Command": f"`{command}`",
        "Date": time.strftime("%Y-%m-%d", time.gmtime()),
        "Commit": output("git", "describe", "--always", "--dirty"),
        "Target": f"`{lane}`",
        "Processor": f"{processor[1] if processor else 'unknown'}, {os.cpu_count()} of them",
        "Compiler": output("g++", "--version").split("\n")[0],
        "C library": output("ldd", "--version").split("\n")[0],
        "Packages": ", ".join(packages),
        "Load average at the start": load(),
    }


class Results:
    def __init__(self, rows, about):
        self.rows = rows  # name of the row -> contestant -> Time, in the order of the program
        self.about = about

    @staticmethod
    def of_benchmarks(benchmarks):
        """Of what Google Benchmark writes, the least of a row's CPU times, or of its wall times."""
        rows = {}
        for result in sorted(benchmarks, key=lambda each: each["family_index"]):
            if result["run_type"] != "iteration":
                continue
            wall = result["run_name"].endswith("/real_time")
            name, contestant = result["run_name"].removesuffix("/real_time").rsplit("/", 1)
            time = Time(result["real_time" if wall else "cpu_time"], result.get("bytes_per_second", 0))
            contestants = rows.setdefault(name, {})
            contestants[contestant] = min(time, contestants.get(contestant, time), key=lambda each: each.ns)
        return Results(rows, {})

    def write(self, path):
        with path.open("w") as out:
            out.writelines(f"# {name}: {value}\n" for name, value in self.about.items())
            out.write("row,contestant,ns,bytes_per_second\n")
            for name, contestants in self.rows.items():
                out.writelines(f"{name},{contestant},{time.ns:.4g},{time.bytes_per_second:.4g}\n"
                               for contestant, time in contestants.items())

    def print_table(self, out):
        print(f"{'row':46} {'ns':>12} {'GB/s':>7}  peers: ns (theirs / ours)", file=out)
        for name, contestants in self.rows.items():
            ours = contestants[OURS]
            peers = "  ".join(f"{peer} {theirs.ns:.1f} ({theirs.ns / ours.ns:.2f})"
                              for peer, theirs in contestants.items() if peer != OURS)
            print(f"{name:46} {ours.ns:12.1f} {ours.bytes_per_second / 1e9:7.2f}  {peers}", file=out)
