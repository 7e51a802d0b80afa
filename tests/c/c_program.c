/* A C99 caller: the names link undecorated, the records have the documented shape, and a search finds
 * something. */
#include <stdio.h>
#include <string.h>

#include "ulkch.h"

static int search(void) {
  static const char text[] = "colour and color";
  ulkRegExpState* state = NULL;
  ulkRegExpFind found[2];
  int32_t count = 2;
  int32_t errorOffset = -1;
  ulkStatus status = ulksRegExpInitAlloc("col(ou?)r$", "", &state, &errorOffset);
  if (status != ulkOk) return 0;
  status = ulksRegExpFind_8u((const uint8_t*)text, (int32_t)strlen(text), state, found, &count);
  ulksRegExpFree(state);
  return status == ulkOk && count == 2 && found[0].pFound == (const uint8_t*)text + 11 &&
         found[0].lenFound == 5 && found[1].lenFound == 1;
}

int main(void) {
  const ulkLibraryVersion* version = ulkchGetLibVersion();
  int32_t index = -2;
  if (version->major != 6 || strcmp(version->Name, "ulkchq4-6.1.dll") != 0) return 1;
  if (ulksFindC_8u((const uint8_t*)"needle", 6, 'l', &index) != ulkOk || index != 4) return 2;
  if (!search()) return 3;
  printf("%s, version %s\n", version->Name, version->Version);
  return 0;
}
