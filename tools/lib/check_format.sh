# Are all sources formatted as .clang-format says? Git knows which files are ours.
files=$(git ls-files -- '*.c' '*.cpp' '*.h') || exit
clang-format --dry-run -Werror $files
