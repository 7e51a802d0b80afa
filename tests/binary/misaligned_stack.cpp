// Calls exports as an old 32-bit caller may: with a stack that is aligned to 4 bytes and no more. A library
// that trusts its caller for the 16 bytes that vector registers are spilled with dies here by a fault.
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <type_traits>

#include "ulkch.h"

// int32_t callAt(int32_t misalignment, const void* function, const int32_t* arguments, int32_t count)
// cdecl: calls function(arguments[0], ...) with esp = 16 * n + misalignment at the call instruction.
#if defined(_WIN32)
#define SYMBOL(name) "_" #name
#else
#define SYMBOL(name) #name
#endif
__asm__(".text\n" SYMBOL(
    callAt) ":\n"
            "  push %ebp\n"
            "  mov %esp, %ebp\n"
            "  push %esi\n"
            "  mov 20(%ebp), %ecx\n"
            "  lea 0(,%ecx,4), %eax\n"
            "  sub %eax, %esp\n"
            "  and $-16, %esp\n"
            "  sub $16, %esp\n"
            "  add 8(%ebp), %esp\n"
            "  mov 16(%ebp), %esi\n"
            "1: dec %ecx\n"
            "  js 2f\n"
            "  mov (%esi,%ecx,4), %eax\n"
            "  mov %eax, (%esp,%ecx,4)\n"
            "  jmp 1b\n"
            "2: call *12(%ebp)\n"
            "  mov -4(%ebp), %esi\n"
            "  leave\n"
            "  ret\n");
extern "C" int32_t callAt(int32_t misalignment, const void* function, const int32_t* arguments,
                          int32_t count);

namespace {

int failures = 0;

void expect(bool condition, const char* what, int32_t misalignment) {
  if (condition) return;
  std::printf("wrong at a stack of 16n+%d: %s\n", static_cast<int>(misalignment), what);
  ++failures;
}

int32_t word(int32_t argument) { return argument; }
int32_t word(const void* argument) { return static_cast<int32_t>(reinterpret_cast<intptr_t>(argument)); }

int32_t word(uint32_t argument) { return static_cast<int32_t>(argument); }

template <class Result, class... Parameters>
int32_t call(int32_t misalignment, Result (*function)(Parameters...),
             std::type_identity_t<Parameters>... arguments) {
  const int32_t words[] = {word(arguments)...};
  return callAt(misalignment, reinterpret_cast<const void*>(function), words, sizeof...(arguments));
}

// Texts of a few vectors, so that kernels get past their scalar paths.
alignas(16) uint8_t text[256];
alignas(16) uint16_t wide[256];

void search(int32_t misalignment) {
  int32_t index = -2;
  expect(call(misalignment, ulksFind_8u, text, 256, text + 200, 20, &index) == ulkOk && index == 200,
         "ulksFind_8u", misalignment);
  expect(call(misalignment, ulksFindCAny_16u, wide, 256, wide + 240, 16, &index) == ulkOk && index == 240,
         "ulksFindCAny_16u", misalignment);
  expect(call(misalignment, ulksFindRevCAny_8u, text, 256, text, 16, &index) == ulkOk && index == 15,
         "ulksFindRevCAny_8u", misalignment);
}

void expressions(int32_t misalignment) {
  static const uint8_t kText[] = "one two three four, and more words to walk over before 1234-5678 at last";
  ulkRegExpState* state = nullptr;
  int32_t offset = -1;
  ulkRegExpFind found[3] = {};
  int32_t count = 3;
  int32_t status =
      call(misalignment, ulksRegExpInitAlloc, "([[:digit:]]+)-(\\d{4}\\b)", "i", &state, &offset);
  expect(status == ulkOk, "ulksRegExpInitAlloc", misalignment);
  if (status != ulkOk) return;
  status = call(misalignment, ulksRegExpFind_8u, kText, sizeof(kText) - 1, state, found, &count);
  expect(status == ulkOk && count == 3 && found[0].lenFound == 9 && found[2].lenFound == 4,
         "ulksRegExpFind_8u", misalignment);
  call(misalignment, ulksRegExpFree, state);
}

// More slots than threads, so that a team searches; its threads have stacks of their own.
void sets(int32_t misalignment) {
  constexpr uint32_t kSlots = 200;
  static const uint8_t kText[] = "one two three four, and more words to walk over before 1234-5678 at last";
  static ulkRegExpMultiFind results[kSlots];
  static ulkRegExpFind found[kSlots][3];
  static ulkRegExpState* states[kSlots];
  ulkRegExpMultiState* set = nullptr;
  int32_t offset = -1;
  call(misalignment, ulksRegExpMultiInitAlloc, &set, kSlots);
  for (uint32_t i = 0; i < kSlots; ++i) {
    call(misalignment, ulksRegExpInitAlloc, "([[:digit:]]+)-(\\d{4}\\b)", "i", &states[i], &offset);
    call(misalignment, ulksRegExpMultiAdd, states[i], i + 1, set);
    results[i] = {0, 0, 3, ulkOk, found[i]};
  }
  const int32_t status = call(misalignment, ulksRegExpMultiFind_8u, kText, sizeof(kText) - 1, results, set);
  int32_t numFound = 0;
  for (uint32_t i = 0; i < kSlots; ++i) {
    numFound += results[i].numFind;
    call(misalignment, ulksRegExpFree, states[i]);
  }
  expect(status == ulkOk && numFound == 3 * kSlots, "ulksRegExpMultiFind_8u", misalignment);
  call(misalignment, ulksRegExpMultiFree, set);
}

}  // namespace

int main() {
  for (int i = 0; i < 256; ++i) {
    text[i] = static_cast<uint8_t>(i);
    wide[i] = static_cast<uint16_t>(i);
  }
  for (const int32_t misalignment : {0, 4, 8, 12}) {
    search(misalignment);
    expressions(misalignment);
    sets(misalignment);
  }
  if (failures == 0) std::puts("exports work at every 4-byte alignment of the stack");
  return failures == 0 ? 0 : 1;
}
