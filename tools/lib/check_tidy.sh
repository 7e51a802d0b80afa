# Does clang-tidy find nothing in the library, ulkgrep and the examples? check_tidy.sh BUILD_DIR
# Configuration lies in .clang-tidy; the build directory tells how each file is compiled.
git ls-files -z -- 'src/*.cpp' 'ulkcore/*.cpp' 'examples/*.c' 'examples/*.cpp' 'ulkgrep/*.c' |
  xargs -0 -n 1 -P "$(nproc)" clang-tidy --quiet -p "$1" 2>/dev/null
