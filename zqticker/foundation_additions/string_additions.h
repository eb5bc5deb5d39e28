// Strings and scanners: String (ZQAdditions), MutableString (ZQAdditions), Scanner (ZQExtensions).
//
// A string is a sequence of UTF-16 code units, lone surrogates and U+0000 among them; lengths and
// indices count code units. Characters of sets are code points. A mutable string is changed in
// place. Qt's null string is an empty one; nothing is std::nullopt.
//
// Nothing here depends on the locale. Unless stated otherwise, everything takes time in proportion
// to the length of its strings. Where memory does not suffice for a result, std::bad_alloc is
// raised.
//
// Thread: any.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <compare>
#include <cstddef>
#include <optional>

namespace zq::platform {
class CharacterSet;
class Scanner;
} // namespace zq::platform

namespace zq {

// ---- String (ZQAdditions): new strings ----------------------------------------------------------

// `length` characters, each drawn from the code units of `characters`.
//
// The generator begins anew at every call, with the time in whole seconds: two calls with the same
// arguments within a second give the same string. Not for secrets.
//
// Raises InvalidArgumentException without characters to draw from, unless `length` is 0, and
// RangeException for a length that no string can have.
// Operation: + randomStringOfLength:withCharacters:
ZQTICKER_EXPORT QString randomStringOfLength(std::size_t length, const QString& withCharacters);

// A new UUID in its canonical form: 36 characters, upper-case hexadecimal digits in groups of 8, 4,
// 4, 4 and 12, joined by hyphens.
// Operation: + uniqueString
ZQTICKER_EXPORT QString uniqueString();

// `string` itself, the empty string for nothing.
// Operation: + validStringFromString:
ZQTICKER_EXPORT QString validStringFromString(const std::optional<QString>& string);

// ---- String (ZQAdditions): tests and values -----------------------------------------------------

// Whether the length is 0.
// Operation: isEmptyString
ZQTICKER_EXPORT bool isEmptyString(const QString& string);

// Whether the length is not 0.
// Operation: isValidString
ZQTICKER_EXPORT bool isValidString(const QString& string);

// The decimal integer that `string` begins with, after white space and a sign. 0 where there is
// none, where it is negative, and from 2^63 on (from 2^32 on, where unsigned long has 32 bits).
// Operation: unsignedLongValue
ZQTICKER_EXPORT unsigned long unsignedLongValue(const QString& string);

// False for "0" alone. Every other string is true, "", "NO" and "false" among them.
// Operation: boolValue
ZQTICKER_EXPORT bool boolValue(const QString& string);

// The bytes that `string` spells in hexadecimal, two characters each; of an odd number the last one
// is the low half of the last byte. Any other character counts as the digit 0. Nothing for the
// empty string.
//
// U+0000 ends what is read; bytes that then remain are 0. Raises InvalidArgumentException for a
// character outside ASCII.
// Operation: hexValue
ZQTICKER_EXPORT std::optional<QByteArray> hexValue(const QString& string);

// The order of `string` and `other`, by code unit, except that a run of the digits 0 to 9 counts as
// its value, whatever its length: "File2" is before "File10". Leading zeros count only where there
// is no other difference; then the order is that of the code units alone. Upper and lower case
// differ.
// Operation: numericCompare:
ZQTICKER_EXPORT std::strong_ordering numericCompare(const QString& string, const QString& other);

// ---- String (ZQAdditions): pieces ---------------------------------------------------------------

// The last code unit, nothing for the empty string.
// Operation: lastCharacter
ZQTICKER_EXPORT std::optional<QString> lastCharacter(const QString& string);

// The first code unit of every run of letters (general categories L* and M*). Characters behind the
// last run, white space apart, give its initial once more: "ab 1" gives "aa".
//
// Raises RangeException where there are characters other than white space, but no letters.
// Operation: initialCharacters
ZQTICKER_EXPORT QString initialCharacters(const QString& string);

// The lines of `string`, without their terminators: LF, CR, the pair CR LF, U+2028 or U+2029. The
// empty string is one empty line; a terminator at the end is not followed by a line. A first line
// that is empty keeps its terminator: "\nb" gives "\n" and "b".
// Operation: componentsSeparatedByLineDelimiter
ZQTICKER_EXPORT QStringList componentsSeparatedByLineDelimiter(const QString& string);

// What stands behind the last "."; the whole string where there is none.
// Operation: lastKeyComponent
ZQTICKER_EXPORT QString lastKeyComponent(const QString& string);

// The first `count` components of `string`, joined again, and `ellipsisString` behind them; the
// string as it is where it has no more components. An empty separator separates nothing.
// Operation: stringWithFirst:componentsSeparatedByString:ellipsisString:
ZQTICKER_EXPORT QString stringWithFirst(const QString& string, std::size_t count,
                                        const QString& componentsSeparatedByString,
                                        const QString& ellipsisString);
// The same without an ellipsis.
// Operation: stringWithFirst:componentsSeparatedByString:
ZQTICKER_EXPORT QString stringWithFirst(const QString& string, std::size_t count,
                                        const QString& componentsSeparatedByString);

// The text before the first "<" and between each ">" and the next "<", without white space and
// newlines at the start of a piece. Pieces are joined by `delimiter`, by nothing where that is
// nothing. Ends at the first tag that no text precedes, so a string that begins with a tag gives
// "", and so does what follows two tags in a row.
// Operation: stringByRemovingHTMLUsingDelimiter:
ZQTICKER_EXPORT QString stringByRemovingHTMLUsingDelimiter(const QString& string,
                                                           const std::optional<QString>& delimiter);

// Scheme, "://" and host of an address: what stands before the first "://", and behind it up to the
// next "/", each without white space and newlines at its start. Without "://" the whole string is
// the scheme: "server" gives "server://".
// Operation: stringWithFirstURLComponent
ZQTICKER_EXPORT QString stringWithFirstURLComponent(const QString& string);

// ---- String (ZQAdditions): changed copies -------------------------------------------------------

// The expansions of further entities by their names, "copy" for &copy;.
using Entities = QHash<QString, QString>;

// `string` with &amp; &lt; &gt; &quot; and &apos; in place of the five characters.
// Operation: stringByEscapingEntities
ZQTICKER_EXPORT QString stringByEscapingEntities(const QString& string);
// The same, with the names of `entities` in place of their expansions as well. Of several
// expansions that begin at the same place the longest counts, of equal ones the predefined entity,
// then the name that comes first by code unit. Entries without an expansion do not count, nor do
// names that would not be read back: predefined ones, empty ones, those that begin with "#" or hold
// "&" or ";". Takes time in proportion to the length of the string times that of the longest
// expansion at most.
// Operation: stringByEscapingEntities:
ZQTICKER_EXPORT QString stringByEscapingEntities(const QString& string, const Entities& entities);

// `string` with predefined entities (&amp; &lt; &gt; &quot; &apos;) and numeric character
// references (&#233; &#xE9;) replaced by what they stand for. What came out is not read again.
// Everything else stays: unknown names, references without ";", "&#X", and numbers that are no
// character (0, surrogates, beyond U+10FFFF).
// Operation: stringByUnescapingEntities
ZQTICKER_EXPORT QString stringByUnescapingEntities(const QString& string);
// The same, with those of `entities` as well. They do not override the predefined ones.
// Operation: stringByUnescapingEntities:
ZQTICKER_EXPORT QString stringByUnescapingEntities(const QString& string, const Entities& entities);

// `string` without spaces and tabs (CharacterSet::whitespaceCharacterSet) at both ends. Line ends
// are kept.
// Operation: stringByTrimmingWhitespace
ZQTICKER_EXPORT QString stringByTrimmingWhitespace(const QString& string);

// `string` with `withString` in place of every run of characters of `set`. White space and newlines
// at the start and behind each run are dropped, unless they are in the set.
// Operation: stringByReplacingCharactersInSet:withString:
ZQTICKER_EXPORT QString stringByReplacingCharactersInSet(const QString& string,
                                                         const platform::CharacterSet& set,
                                                         const QString& withString);

// `string` with U+2026, one character, behind it.
// Operation: stringByAppendingEllipsis
ZQTICKER_EXPORT QString stringByAppendingEllipsis(const QString& string);

// ---- MutableString (ZQAdditions) ----------------------------------------------------------------

// Appends `other`; nothing for nothing.
// Operation: appendNilString:
ZQTICKER_EXPORT void appendNilString(QString& string, const std::optional<QString>& other);

// Keeps the characters of `set` only. White space and newlines at the start, and behind characters
// that are not in the set, are dropped even where they are in it.
// Operation: removeCharactersNotInSet:
ZQTICKER_EXPORT void removeCharactersNotInSet(QString& string, const platform::CharacterSet& set);

// Deletes from `index` to the end; nothing where the string is no longer than that.
// Operation: deleteCharactersFromIndex:
ZQTICKER_EXPORT void deleteCharactersFromIndex(QString& string, std::size_t index);

// Deletes everything.
// Operation: deleteAllCharacters
ZQTICKER_EXPORT void deleteAllCharacters(QString& string);

// ---- Scanner (ZQExtensions) ---------------------------------------------------------------------
//
// These skip nothing. But a scanner is at end where only characters to be skipped remain.

// The code unit at the scan location, nothing at end.
// Operation: characterAtScanLocation
ZQTICKER_EXPORT std::optional<QString> characterAtScanLocation(const platform::Scanner& scanner);

// Moves the scan location by one and stores the code unit that stood there in `string` (null: is
// not stored). At end false, and both stay as they are.
// Operation: scanCharacterIntoString:
ZQTICKER_EXPORT bool scanCharacterIntoString(platform::Scanner& scanner, QString* string);

// Moves the scan location by one; false at end.
// Operation: advance
ZQTICKER_EXPORT bool advance(platform::Scanner& scanner);

} // namespace zq
