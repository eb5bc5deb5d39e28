// The names of text attributes, as they stand in an attributed string and in its archive.
#pragma once

#include <QtCore/QLatin1StringView>
#include <QtCore/QVariant>

namespace zq::platform {

// Attributes by name. A value is any object; an attribute that drawing does not know is kept.
using Attributes = QVariantMap;

// Attributes that drawing honours.
inline constexpr QLatin1StringView FontAttributeName{"NSFont"};                       // Ref<Font>
inline constexpr QLatin1StringView ForegroundColorAttributeName{"NSColor"};           // Ref<Color>
inline constexpr QLatin1StringView BackgroundColorAttributeName{"NSBackgroundColor"}; // Ref<Color>
inline constexpr QLatin1StringView UnderlineStyleAttributeName{"NSUnderline"}; // number, 0 is none
inline constexpr QLatin1StringView StrikethroughStyleAttributeName{"NSStrikethrough"}; // the same
inline constexpr QLatin1StringView UnderlineColorAttributeName{"NSUnderlineColor"};    // Ref<Color>
inline constexpr QLatin1StringView KernAttributeName{"NSKern"};                        // points
// Points by which the baseline is raised.
inline constexpr QLatin1StringView BaselineOffsetAttributeName{"NSBaselineOffset"};
// Of a Ref<ParagraphStyle>, one line of text honours the writing direction.
inline constexpr QLatin1StringView ParagraphStyleAttributeName{"NSParagraphStyle"};
// Ref<TextAttachment>, shown for the characters U+FFFC.
inline constexpr QLatin1StringView AttachmentAttributeName{"NSAttachment"};

// Attributes that are kept only.
inline constexpr QLatin1StringView LinkAttributeName{"NSLink"};
inline constexpr QLatin1StringView OriginalFontAttributeName{"NSOriginalFont"};
inline constexpr QLatin1StringView LigatureAttributeName{"NSLigature"};
inline constexpr QLatin1StringView StrikethroughColorAttributeName{"NSStrikethroughColor"};
inline constexpr QLatin1StringView StrokeColorAttributeName{"NSStrokeColor"};
inline constexpr QLatin1StringView StrokeWidthAttributeName{"NSStrokeWidth"};
inline constexpr QLatin1StringView SuperscriptAttributeName{"NSSuperScript"};
inline constexpr QLatin1StringView ObliquenessAttributeName{"NSObliqueness"};
inline constexpr QLatin1StringView ExpansionAttributeName{"NSExpansion"};
inline constexpr QLatin1StringView ShadowAttributeName{"NSShadow"};
inline constexpr QLatin1StringView CursorAttributeName{"NSCursor"};
inline constexpr QLatin1StringView ToolTipAttributeName{"NSToolTip"};

} // namespace zq::platform
