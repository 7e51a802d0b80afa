// Calls the DLL and returns what is wrong with the answers.
#include <ulkch.h>

int start(void) {
  static const uint8_t text[] = "help@example.com";
  ulkRegExpState* expression;
  int32_t errorOffset;
  ulkRegExpFind found;
  int32_t count = 1;
  if (ulkchGetLibVersion()->major != 6) return 1;
  if (ulksRegExpInitAlloc("@\\w+", "", &expression, &errorOffset) != ulkOk) return 2;
  if (ulksRegExpFind_8u(text, sizeof text - 1, expression, &found, &count) != ulkOk) return 3;
  ulksRegExpFree(expression);
  return count == 1 && (const uint8_t*)found.pFound == text + 4 && found.lenFound == 8 ? 0 : 4;
}
