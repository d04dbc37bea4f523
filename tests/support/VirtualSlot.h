#pragma once

#include <QObject>
#include <QVector>

#include <cstddef>
#include <cstring>

/// The place of a virtual operation in the table of functions that callers were built against. Not
/// for Windows, where the compiler hides it behind a thunk.
template <typename Member>
int slotOf(Member member)
{
    static_assert(sizeof member >= sizeof(std::ptrdiff_t));
    std::ptrdiff_t offset = 0; // plus one, where the operation is virtual
    std::memcpy(&offset, &member, sizeof offset);
    return int(offset / std::ptrdiff_t(sizeof(void*)));
}

/// Behind it come the operations that a subclass of QObject adds.
inline int lastSlotOfQObject()
{
    class OpenObject : public QObject
    {
    public:
        static int lastSlot() { return slotOf(&OpenObject::disconnectNotify); }
    };
    return OpenObject::lastSlot();
}

/// first, first + 1, and so on.
inline QVector<int> slotsFrom(int first, int count)
{
    QVector<int> slotNumbers;
    for (int i = 0; i < count; ++i) {
        slotNumbers << first + i;
    }
    return slotNumbers;
}
