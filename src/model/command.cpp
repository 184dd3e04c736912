#include "command.h"

size_t qHash(const Command& command, size_t seed) noexcept
{
    return qHashMulti(seed, command.extension, command.command);
}
