// Character references, as XML and HTML write them between "&" and ";".
#pragma once

#include <QtCore/QByteArrayView>

#include <optional>

namespace zq::app {

// The longest name and the longest number that anybody means.
constexpr qsizetype LongestReference = 32;

// The character that `reference` ("amp", "eacute", "#233", "#xE9") stands for; nothing for a name
// that HTML does not have, and for what is no reference. Numbers from 128 to 159 are taken for
// windows-1252, as browsers take them; control characters are returned as they are, what else is no
// character of XML as U+FFFD.
std::optional<char32_t> characterOfReference(QByteArrayView reference);

// Whether XML allows the character.
bool isXmlCharacter(char32_t character);

} // namespace zq::app
