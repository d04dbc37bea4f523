#pragma once

namespace Corvane::Map {

/// Calls each of the pointers that the list holds now, in order, save those that an earlier call has
/// taken out: clients and layers may change the list that they are called from.
template <typename List, typename Call>
void callEachThatStays(const List& list, Call call)
{
    const List held = list; // the same data until the list changes
    for (auto* entry : held) {
        if (held.isSharedWith(list) || list.contains(entry)) {
            call(entry);
        }
    }
}

} // namespace Corvane::Map
