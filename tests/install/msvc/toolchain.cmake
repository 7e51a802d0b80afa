# 32-bit Windows by the rules of Visual C++, with clang and lld in place of Microsoft's compiler and linker, and without
# a C library, because there is no Windows SDK to take one from.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER clang)
set(CMAKE_C_COMPILER_TARGET i686-pc-windows-msvc)
set(CMAKE_C_FLAGS_INIT -ffreestanding)
set(CMAKE_C_STANDARD_LIBRARIES "")
set(CMAKE_MSVC_RUNTIME_LIBRARY "")
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../../../tools/run-windows)
