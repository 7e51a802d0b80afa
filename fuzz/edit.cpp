// Insertion, removal and unit replacement.
// Numbers: the alignments of text, insertion and result, a position and a length. Fields: the insertion; the
// text.
#include "edit.h"

#include "input.h"

using namespace ulk_fuzz;

namespace {

template <class Unit>
void run(Input input) {
  Edit<Unit> edit = {};
  edit.shifts = input.shifts();
  edit.position = input.number();
  edit.length = input.number();
  edit.piece = unitsOf<Unit>(input.field());
  edit.text = unitsOf<Unit>(input.rest());
  edit.checkInsert();
  edit.checkRemove();
  edit.checkReplace();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  run<uint8_t>(Input(data, size));
  run<uint16_t>(Input(data, size));
  return 0;
}
