#pragma once

class IProfile;
class IProfileList;

// Each calls every operation of the interface once, from the first to the last, and then deletes
// the object.
namespace qeltin::testing::frozen {

void CallEveryOperation(IProfile* profile);
void CallEveryOperation(IProfileList* list);

}  // namespace qeltin::testing::frozen
