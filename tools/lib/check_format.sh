# Are all sources formatted as .clang-format says? Git knows which files are ours.
git ls-files -z -- '*.c' '*.cpp' '*.h' | xargs -0 clang-format --dry-run -Werror
