#include "TamberlinKit/Counting/CharacterKinds.h"

namespace Tamberlin::CharacterTable {

namespace {

#include "CharacterTable.inc" // Made by MakeCharacterTable.cpp.

} // namespace

const unsigned char* const blockOfCodePoint = blocks;
const std::uint16_t* const blockData = data;

} // namespace Tamberlin::CharacterTable
