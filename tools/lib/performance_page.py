"""Renews the figures of docs/performance.md: tables between its markers, plots and a CSV file beside it."""
import collections
import math
import re
import subprocess

from bench_results import OURS, ROOT

PAGE = ROOT / "docs" / "performance.md"
PLOTS = ROOT / "docs" / "plots"
TWO_THREADS = "ulkch_2_threads"  # ours as well, so no peer

# A family: the rows that belong to it, those of them that its table shows, and whether each peer has a column there.
Family = collections.namedtuple("Family", "title rows shown columns", defaults=[False])
FAMILIES = [
    Family("Search for a unit", r"find(_rev)?_c(_z)?/", r"absent/(16|256|4096|65536)$"),
    Family("Search for a string", r"find(_rev)?/", r"english/(3|8|16)/(64|65536)|(random/4|/a-b/64)/65536"),
    Family("Search for any of several units", r"find(_rev)?_c_any/", r"absent/(1|4|16|48)/(32|65536)$"),
    Family("Comparison", r"(compare|equal)", r"same/(16|256|65536)$|(english|greek|chinese)[^/]*/65536"),
    Family("Case conversion", r"(lower|upper)case", r"latin/.*/(16|256|65536)$|lowercase/.*/(64|65536)$"),
    Family("Hashing", r"hash", r"/(16|256|65536)$"),
    Family("Trimming", r"trim", r"trim_c(_any)?/[^/]*(/4)?/(1|8|1000|524288)/32$"),
    Family("Editing", r"(insert|remove|replace_c)", r"16/(32|1024|65536)$|replace_c/.*/(16|256|65536)$"),
    Family("Joining and splitting", r"(concat|split)", r"16\+5|256\+256|65536\+65536|(words|even30|sentences)/\d{4,}"),
    Family("UTF conversion", r"utf_", r"/(32|65536)$"),
    Family("Expressions: all matches in 64 KiB", r"regexp/text/", r"", columns=True),
    Family("Expressions: all matches in 1 MiB", r"regexp/text_1_MiB/", r"", columns=True),
    Family("Expressions: the first match in each short line", r"regexp/lines/", r"", columns=True),
    Family("Expressions: compiling", r"regexp/compile/", r"", columns=True),
    Family("Expressions: compiling 10 KB", r"regexp/compile_long/", r"", columns=True),
    Family("Replacement in 1 MiB", r"replace/", r""),
    Family("Sets of expressions over 1 MiB", r"sets/[a-z]+/(first|all)/", r""),
    Family("Sets of expressions over 64 KiB and over lines", r"sets/mixed/[0-9]", r""),
    Family("Sets of expressions: compiling", r"sets/compile/", r""),
]


def time_text(ns):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if ns >= size:
            return f"{ns / size:.3g} {unit}"
    return f"{ns:.3g} ns"


def rate_text(rate):
    return "" if rate == 0 else f"{rate / 1e9:.3g} GB/s" if rate >= 1e9 else f"{rate / 1e6:.3g} MB/s"


def table(heads, rows):
    lines = ["| " + " | ".join(heads) + " |", "|---" * len(heads) + "|"]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows])


class Page:
    def __init__(self, results):
        self.about = results.about
        self.rows = results.rows

    def of(self, pattern):
        return {name: times for name, times in self.rows.items() if re.match(pattern, name)}

    def contestants(self, rows):
        return list(dict.fromkeys(contestant for times in rows.values() for contestant in times if contestant != OURS))

    def ratios(self, rows, peer):
        """Their time by ours, by row."""
        return {name: times[peer].ns / times[OURS].ns for name, times in rows.items() if peer in times}

    def facts(self):
        return table(["", ""], self.about.items())

    def summary(self):
        lines = []
        for family in FAMILIES:
            rows = self.of(family.rows)
            for peer in self.contestants(rows):
                ratios = self.ratios(rows, peer)
                if peer == TWO_THREADS:
                    continue
                mean = math.exp(sum(math.log(ratio) for ratio in ratios.values()) / len(ratios))
                wins = sum(ratio >= 1 for ratio in ratios.values())
                least = min(ratios, key=ratios.get)
                most = max(ratios, key=ratios.get)
                lines.append([family.title, peer, f"{mean:.2f}", f"{wins} of {len(ratios)}",
                              f"{ratios[least]:.2f} `{least}`", f"{ratios[most]:.2f} `{most}`"])
        return table(["Family", "Peer", "Mean ratio", "Rows won", "Least ratio", "Greatest ratio"], lines)

    def losses(self, fewest=0.9, most_rows=4):
        """The rows of each family where a peer is clearly faster, the worst first."""
        lines = []
        for family in FAMILIES:
            rows = self.of(family.rows)
            for peer in self.contestants(rows):
                ratios = self.ratios(rows, peer)
                lost = sorted((name for name in ratios if ratios[name] < fewest), key=ratios.get)
                if peer == TWO_THREADS or not lost:
                    continue
                worst = ", ".join(f"`{name}` {ratios[name]:.2f}" for name in lost[:most_rows])
                lines.append([family.title, peer, f"{len(lost)} of {len(ratios)}", worst])
        return table(["Family", "Peer", f"Rows below {fewest}", "The worst"], lines)

    def family(self, family):
        rows = {name: times for name, times in self.of(family.rows).items() if re.search(family.shown, name)}
        if family.columns:
            return f"### {family.title}\n\n" + self.ratio_columns(rows)
        lines = []
        for name, times in rows.items():
            ours = times[OURS]
            others = ", ".join(f"{contestant} {time_text(theirs.ns)} ({theirs.ns / ours.ns:.2f})"
                               for contestant, theirs in times.items() if contestant != OURS)
            lines.append([f"`{name}`", time_text(ours.ns), rate_text(ours.bytes_per_second), others])
        return f"### {family.title}\n\n" + table(["Row", OURS, "Rate", "Peers (their time / ours)"], lines)

    def ratio_columns(self, rows):
        peers = self.contestants(rows)
        lines = [[f"`{name}`", time_text(times[OURS].ns), rate_text(times[OURS].bytes_per_second)] +
                 [f"{times[peer].ns / times[OURS].ns:.2f}" if peer in times else "" for peer in peers]
                 for name, times in rows.items()]
        return table(["Row", OURS, "Rate", *peers], lines)

    def families(self):
        return "\n\n".join(self.family(family) for family in FAMILIES)

    def lengths_plot(self):
        """Ratios over the length of the text."""
        series = {"find_c/8u/absent": "memchr", "find/8u/english/3": "memmem", "find_c_any/8u/absent/4": "strcspn",
                  "compare/8u/same": "memcmp", "lowercase_latin/8u": "loop", "utf_8u16u/ascii": "icu",
                  "utf_8u16u/latin": "icu"}
        data = []
        for row, peer in series.items():
            ratios = self.ratios(self.of(re.escape(row) + r"/\d+$"), peer)
            points = sorted((int(name.rsplit("/", 1)[1]), ratio) for name, ratio in ratios.items())
            data.append((f"{row} beside {peer}", [(length, ratio) for length, ratio in points if length > 0]))
        gnuplot("lengths", "set logscale xy\nset key outside right\nset xlabel 'length of the text, units'\n"
                "set ylabel 'their time / ours'\nset xrange [3:1.2e6]\n", data, "with linespoints")

    def bars_plot(self, name, pattern, ylabel, value):
        """A group of bars for each row, a bar for each contestant."""
        rows = self.of(pattern)
        data = [(contestant, [(label(row), value(times[contestant]) if contestant in times else "NaN")
                              for row, times in rows.items()])
                for contestant in [OURS, *self.contestants(rows)]]
        gnuplot(name, "set style data histogram\nset style histogram clustered gap 1\nset style fill solid\n"
                "set logscale y\nset xtics rotate by -55\nset key outside top horizontal\n"
                f"set ylabel '{ylabel}'\n", data, "using 2:xtic(1)", width=max(960, 5 * len(rows) * len(data)))

    def plots(self):
        def megabytes(time):
            return time.bytes_per_second / 1e6

        self.lengths_plot()
        self.bars_plot("utf", r"utf_.*/4096$", "MB/s of source text", megabytes)
        self.bars_plot("expressions", r"regexp/text/", "MB/s", megabytes)
        self.bars_plot("replacement", r"replace/", "MB/s", megabytes)
        self.bars_plot("sets", r"sets/[a-z]+/(first|all)/", "milliseconds for 1 MiB", lambda time: time.ns / 1e6)


def label(row):
    return re.sub(r"^(regexp/text|replace|sets)/|/4096$", "", row)


def gnuplot(name, settings, data, style, width=960):
    """Draws named series of points."""
    blocks = "".join(f"$data{i} << END\n" + "".join(f"{x} {y}\n" for x, y in points) + "END\n"
                     for i, (_, points) in enumerate(data))
    plot = ", ".join(f"$data{i} {style} title '{title}'" for i, (title, _) in enumerate(data))
    script = (f"set terminal svg noenhanced size {width},480 font 'sans-serif,12' background 'white'\n"
              f"set output '{PLOTS / name}.svg'\nset grid ytics\n{settings}{blocks}plot {plot}\n")
    subprocess.run(["gnuplot"], input=script, text=True, check=True)


def splice(text, name, content):
    begin, end = f"<!-- begin {name} -->", f"<!-- end {name} -->"
    before, rest = text.split(begin)
    return before + begin + "\n" + content + "\n" + end + rest.split(end)[1]


def renew(results):
    PLOTS.mkdir(exist_ok=True)
    page = Page(results)
    text = PAGE.read_text()
    for part in ("facts", "summary", "losses", "families"):
        text = splice(text, part, getattr(page, part)())
    page.plots()
    results.write(PLOTS / "results.csv")
    PAGE.write_text(text)
