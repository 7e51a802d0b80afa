"""Makes the texts of the benchmarks from what Debian packages bring along. None of them enters the repository."""
import collections
import gzip

# A text: files of a package, and how many bytes at their start are no good, being lists and the like.
Source = collections.namedtuple("Source", "package files skipped")
SOURCES = {
    "prose": Source("jargon-text", "usr/share/doc/jargon-text/jargon.txt.gz", 200000),
    "source": Source("linux-libc-dev", "usr/include/linux/*.h", 0),
    "manual": Source("manpages-ru", "usr/share/man/ru/man[4-8]/*.gz", 0),
    "changelog": Source("gpgv", "usr/share/doc/gpgv/changelog.gz", 0),
}
PACKAGES = [source.package for source in SOURCES.values()]
SIZE = 1 << 20


def whole_lines(data, skipped):
    """At most SIZE bytes, behind the line that is at `skipped`, to the end of a line."""
    start = data.index(b"\n", skipped) + 1 if skipped else 0
    return data[start:data.rindex(b"\n", start, start + SIZE) + 1]


def write(unpacked, folder):
    folder.mkdir()
    for name, source in SOURCES.items():
        files = sorted(path for path in unpacked.glob(source.files) if path.is_file() and not path.is_symlink())
        contents = (gzip.decompress(path.read_bytes()) if path.suffix == ".gz" else path.read_bytes() for path in files)
        text = whole_lines(b"".join(contents), source.skipped)
        text.decode()  # must be UTF-8
        (folder / name).write_bytes(text)
