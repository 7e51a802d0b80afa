"""The Conan recipe: conan create packaging/conan, with -o ulkch/*:shared=True for the shared library."""

import os
import re

from conan import ConanFile
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load, rm

FOLDERS = ("cmake", "examples", "include", "src", "ulkcore", "ulkgrep", "docs")


class Ulkch(ConanFile):
    name = "ulkch"
    description = "String-processing primitives and regular expressions for x86"
    license = "MIT"
    package_type = "library"
    settings = "os", "compiler", "build_type", "arch"
    options = {"shared": [True, False], "openmp": [True, False]}
    default_options = {"shared": False, "openmp": True}

    @property
    def _sources(self):
        return os.path.join(self.recipe_folder, "..", "..")

    def set_version(self):
        self.version = re.search(r"^ *VERSION ([\d.]+)$", load(self, os.path.join(self._sources, "CMakeLists.txt")), re.M)[1]

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "*.md", "LICENSE", *(f"{folder}/*" for folder in FOLDERS)):
            copy(self, pattern, self._sources, self.export_sources_folder)

    def configure(self):
        # The library has no C++ runtime in it or in its interface.
        self.settings.rm_safe("compiler.libcxx")
        self.settings.rm_safe("compiler.cppstd")

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        for option in ("ULKCH_BUILD_EXAMPLES", "ULKCH_WARNINGS_AS_ERRORS"):
            toolchain.cache_variables[option] = False
        toolchain.cache_variables["ULKCH_OPENMP"] = bool(self.options.openmp)
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        # The build makes both libraries; linkers would take the shared one.
        static = ("lib/libulkch.a", "lib/libulkcore.a")
        shared = ("lib/libulkch.so*", "lib/libulkch.dll.a", "lib/ulkch.lib", "bin/*.dll")
        for name in static if self.options.shared else shared:
            rm(self, os.path.basename(name), os.path.join(self.package_folder, os.path.dirname(name)))
        copy(self, "LICENSE", self.source_folder, os.path.join(self.package_folder, "licenses"))

    def package_info(self):
        self.cpp_info.set_property("cmake_target_name", "ulkch::ulkch" if self.options.shared else "ulkch::ulkch_static")
        if self.options.shared:
            self.cpp_info.libs = ["ulkch"]
            return
        self.cpp_info.libs = ["ulkch", "ulkcore"]
        self.cpp_info.defines = ["ULKCH_STATIC"]
        if self.options.openmp:
            self.cpp_info.system_libs = ["gomp", "pthread"]
