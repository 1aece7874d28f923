#include "model/CChangeLog.h"

namespace VemoKesConfigTools {

void CChangeLog::Close() {
    mOpen = false;
    mKeyChanges.clear();
    newPlaces.clear();
    storesBefore.reset();
}

void CChangeLog::UndoKeys() {
    for (; !mKeyChanges.empty(); mKeyChanges.pop_back())
        mKeyChanges.back().place->TakeBack(mKeyChanges.back());
}

}  // namespace VemoKesConfigTools
