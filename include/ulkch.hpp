/// @file
/// ulkch for C++17 and later: the functions of ulkch.h over views and strings, and expressions that own what
/// they need. Header only; needs the library and the standard library, but neither exceptions nor run-time
/// type information.
///
/// **Results** are values. A result<T> holds a value or the status that tells why there is none; a position,
/// matches and the like carry their status with them. "Not found" is no error, and a search that gave up is
/// never taken for one that found nothing. Two functions throw, where the compiler has exceptions:
/// result::value() and the constructor of regexp.
///
/// **Views** that come out (matches, parts, trimmed strings) point into the text that went in and live as
/// long as it does. Positions and lengths count units: bytes, or 16-bit units.
///
/// **Memory** comes from the standard library and, for compiled expressions, from the core library. Where
/// there is none, the standard library throws or, without exceptions, ends the program.
///
/// **Threads**: what is const may be called from several threads at once; a search is not const.
///
/// @namespace ulkch
/// All that ulkch.hpp declares.
#ifndef ULKCH_HPP
#define ULKCH_HPP

#include "ulkch/regexp.hpp"
#include "ulkch/regexp_set.hpp"
#include "ulkch/strings.hpp"

#endif
