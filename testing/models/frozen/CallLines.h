#pragma once

class ILine;
class ILineList;

// Each calls every operation of the interface once, from the first to the last, and then deletes
// the object.
namespace qeltin::testing::frozen {

void CallEveryOperation(ILine* line);
void CallEveryOperation(ILineList* list);

}  // namespace qeltin::testing::frozen
