#include <stdio.h>
#include <ulkch.h>

int main(void) {
  const char text[] = "Questions? Write to help@example.com, we read it daily.";
  const int32_t length = sizeof text - 1;  // without the zero: a search may look at the byte behind the text
  ulkRegExpState* expression;
  ulkRegExpFind found[3];  // the match and its two groups
  int32_t errorOffset, count = 3;
  ulkStatus status = ulksRegExpInitAlloc("(\\w+)@([\\w.]+)", "i", &expression, &errorOffset);
  if (status != ulkOk) return fprintf(stderr, "error %d at byte %d\n", (int)status, (int)errorOffset), 2;
  ulksRegExpSetMatchLimit(10000 + 100 * length, expression);
  status = ulksRegExpFind_8u((const uint8_t*)text, length, expression, found, &count);
  if (status != ulkOk) fprintf(stderr, "error %d: nobody knows whether it matches\n", (int)status);
  for (int32_t i = 0; status == ulkOk && i < count; ++i) {
    if (found[i].lenFound < 0) continue;  // a group that took no part
    const int32_t left = length - (int32_t)((const char*)found[i].pFound - text);
    const int32_t bytes = found[i].lenFound < left ? found[i].lenFound : left;
    printf("%d: %.*s\n", (int)i, (int)bytes, (const char*)found[i].pFound);
  }
  ulksRegExpFree(expression);
  return status != ulkOk ? 2 : count == 0;
}
