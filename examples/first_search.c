#include <stdio.h>
#include <ulkch.h>

int main(void) {
  const char text[] = "Questions? Write to help@example.com, we read it daily.";
  ulkRegExpState* expression;
  int32_t errorOffset;
  ulkStatus status = ulksRegExpInitAlloc("(\\w+)@([\\w.]+)", "i", &expression, &errorOffset);
  if (status != ulkOk) {
    fprintf(stderr, "error %d at byte %d of the pattern\n", (int)status, (int)errorOffset);
    return 1;
  }
  ulkRegExpFind found[3];  // the match and its two groups
  int32_t count = 3;
  status = ulksRegExpFind_8u((const uint8_t*)text, sizeof text - 1, expression, found, &count);
  for (int32_t i = 0; status == ulkOk && i < count; ++i)
    printf("%d: %.*s\n", (int)i, (int)found[i].lenFound, (const char*)found[i].pFound);
  ulksRegExpFree(expression);
  return status == ulkOk && count > 0 ? 0 : 1;
}
