"""Builds and runs the benchmarks and prints their results, for tools/bench, where the options are told."""
import argparse
import json
import pathlib
import shutil
import subprocess
import sys

import bench_texts
import performance_page
from bench_results import ROOT, Results, facts, load

ARCHITECTURES = {"linux-i686": "i386", "linux-x86_64": "amd64"}
LIBRARIES = ["libbenchmark-dev", "libbenchmark1debian", "libpcre2-dev", "libre2-dev", "libonig-dev", "libonig5",
             "libboost1.74-dev", "libboost-regex1.74-dev", "libicu-dev", "libhyperscan-dev"]
PACKAGES = LIBRARIES + bench_texts.PACKAGES


def tell(message):
    print(f"tools/bench: {message}", file=sys.stderr)


def run(*command, cwd=ROOT):
    subprocess.run([str(part) for part in command], cwd=cwd, check=True, stdout=sys.stderr)


def fetch_packages(architecture, home):
    """Unpacks the packages for an architecture into a folder below `home`, with lists of apt's own there."""
    unpacked = home / "unpacked"
    contents = unpacked / "packages"
    if contents.exists() and contents.read_text().split() == PACKAGES:
        return unpacked
    partly = home / "partly_unpacked"
    with_texts = home / "partly_unpacked_texts"  # apart: headers of a kernel are among them
    for folder in (unpacked, partly, with_texts):
        shutil.rmtree(folder, ignore_errors=True)
    for package in home.glob("*.deb"):
        package.unlink()
    (home / "lists" / "partial").mkdir(parents=True, exist_ok=True)
    mirrors = subprocess.run(["apt-get", "indextargets", "--format", "$(SITE)", "Codename: bookworm", "Label: Debian"],
                             capture_output=True, text=True).stdout.split()
    sources = home / "sources.list"
    sources.write_text("deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] "
                       f"{(mirrors + ['http://deb.debian.org/debian'])[0]} bookworm main\n")
    options = {"APT::Architecture": architecture, "APT::Architectures": architecture, "Dir::Etc::SourceList": sources,
               "Dir::Etc::SourceParts": "-", "Dir::State::Lists": home / "lists", "Dir::State::status": "/dev/null",
               "Dir::Cache": home / "cache", "APT::Sandbox::User": "root"}
    apt = ["apt-get", "-q"] + [f"-o{name}={value}" for name, value in options.items()]
    run(*apt, "update", cwd=home)
    run(*apt, "download", *PACKAGES, cwd=home)
    for package in home.glob("*.deb"):
        is_text = package.name.split("_")[0] in bench_texts.PACKAGES
        run("dpkg-deb", "-x", package, with_texts if is_text else partly)
    bench_texts.write(with_texts, partly / "texts")
    shutil.rmtree(with_texts)
    (partly / contents.name).write_text("\n".join(PACKAGES))
    partly.rename(unpacked)
    return unpacked


def packages_home(lane, home):
    return home / f"bench-packages-{ARCHITECTURES[lane]}"


def build(lane, home):
    where = home / f"bench-{lane}"
    options = ["-DULKCH_BUILD_BENCH=ON", "-DULKCH_BUILD_TESTS=OFF", "-DULKCH_BUILD_EXAMPLES=OFF"]
    if shutil.which("apt-get"):
        packages = fetch_packages(ARCHITECTURES[lane], packages_home(lane, home))
        options.append(f"-DULKCH_BENCH_PACKAGES={packages}")
    run("cmake", "--preset", lane, "-B", where, *options)
    run("cmake", "--build", where, "--target", "ulkch_bench", "-j2")
    return where / "bench" / "ulkch_bench"


def measure(program, pattern, quick):
    out = program.parent / "results.json"
    out.write_text("")
    tell(f"measuring; every figure goes to {out}")
    ran = subprocess.run([program, f"--benchmark_filter={pattern}", f"--benchmark_out={out}",
                          "--benchmark_out_format=json", "--benchmark_enable_random_interleaving=true",
                          f"--benchmark_repetitions={3 if quick else 5}",
                          f"--benchmark_min_time={0.003 if quick else 0.01}"], stdout=subprocess.DEVNULL)
    if ran.returncode == 0 and not out.stat().st_size:
        sys.exit(f"tools/bench: no row matches {pattern} (a row's name goes on with its contestant's)")
    benchmarks = json.loads(out.read_text())["benchmarks"] if ran.returncode in (0, 1) else []
    wrong = {each["run_name"] for each in benchmarks if "error_message" in each}
    for name in sorted(wrong):
        tell(f"wrong answer: {name}")
    ran.check_returncode()
    return Results.of_benchmarks(benchmarks)


def main():
    parser = argparse.ArgumentParser(prog="tools/bench", add_help=False)
    parser.add_argument("--lane", default="linux-i686", choices=list(ARCHITECTURES))
    parser.add_argument("--filter", default=".")
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--csv", type=pathlib.Path)
    parser.add_argument("--page", action="store_true")
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build")
    arguments = parser.parse_args()
    home = arguments.build.resolve()
    try:
        run(ROOT / "tools" / "set-up", "bench")
        program = build(arguments.lane, home)
        packages = sorted(package.stem for package in packages_home(arguments.lane, home).glob("*.deb"))
        about = facts(" ".join(["tools/bench", *sys.argv[1:]]), arguments.lane, packages)
        results = measure(program, arguments.filter, arguments.quick)
    except subprocess.CalledProcessError as failure:
        tell(f"{failure.cmd[0]} failed")
        return 1
    results.about = about | {"Load average at the end": load()}
    results.print_table(sys.stdout)
    if arguments.csv:
        results.write(arguments.csv)
        tell(f"the results are in {arguments.csv}")
    if arguments.page:
        performance_page.renew(results)
        tell(f"the page is {performance_page.PAGE}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
