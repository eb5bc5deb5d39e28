// How a line is measured.
#include "zqticker/platform/graphics/FontFace_p.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/ParagraphStyle.h"
#include "zqticker/platform/text/TextAttachment.h"
#include "zqticker/platform/text/TextLine_p.h"
#include "zqticker/platform/text/bidi_p.h"
#include "zqticker/platform/text/emoji_p.h"
#include "zqticker/platform/text/line_breaks_p.h"

#include <algorithm>
#include <atomic>

namespace zq::platform {

namespace {

// Characters in which a step looks for emoji.
constexpr qsizetype emojiStep = 16384;

constexpr char16_t zeroWidthSpace = 0x200b;

// What stands for `text[i]` on one line.
char16_t onOneLine(const QString& text, qsizetype i) {
  const QChar c = text[i];
  switch (c.unicode()) {
  case u'\n':
    return i > 0 && text[i - 1] == u'\r' ? zeroWidthSpace : u' ';
  case u'\r':
  case u'\t':
  case u'\v':
  case u'\f':
  case 0x85:
  case QChar::LineSeparator:
  case QChar::ParagraphSeparator:
    return u' ';
  default:
    break;
  }
  if (c.unicode() < 0x20 || (c.unicode() >= 0x7f && c.unicode() < 0xa0))
    return zeroWidthSpace;
  const bool isLone =
      (c.isHighSurrogate() && (i + 1 == text.size() || !text[i + 1].isLowSurrogate())) ||
      (c.isLowSurrogate() && (i == 0 || !text[i - 1].isHighSurrogate()));
  return isLone ? char16_t(QChar::ReplacementCharacter) : c.unicode();
}

// Shares the characters of a text that stands on one line already.
QString onOneLine(const QString& text) {
  const auto isPlain = [](QChar c) { return c.unicode() >= 0x20 && c.unicode() < 0x7f; };
  QString line = text;
  QChar* changed = nullptr;
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (isPlain(text[i]))
      continue;
    const QChar shown(onOneLine(text, i));
    if (shown == text[i])
      continue;
    if (!changed)
      changed = line.data();
    changed[i] = shown;
  }
  return line;
}

bool isAttachmentCharacter(QChar c) {
  return c == QChar(TextAttachment::AttachmentCharacter);
}

// Whether the unit at `i` belongs to the character before it: a run that begins there would tear
// a letter from its marks, or an emoji from its parts.
bool continuesCharacter(const QString& text, qsizetype i) {
  constexpr char16_t joiner = 0x200d;
  const QChar c = text[i];
  // Pictures stand for themselves.
  if (i == 0 || isAttachmentCharacter(c) || isAttachmentCharacter(text[i - 1]))
    return false;
  const bool isSkinTone = c == QChar(0xd83c) && i + 1 < text.size() &&
                          text[i + 1] >= QChar(0xdffb) && text[i + 1] <= QChar(0xdfff);
  return c.isMark() || c == QChar(joiner) || text[i - 1] == QChar(joiner) || isSkinTone ||
         (c.isLowSurrogate() && text[i - 1].isHighSurrogate());
}

std::optional<bool> directionOf(const std::vector<AttributedString::Run>& runs) {
  if (runs.empty())
    return std::nullopt;
  const auto style =
      objectOf<ParagraphStyle>(runs.front().attributes.value(ParagraphStyleAttributeName));
  if (!style || style->settings().writingDirection == WritingDirection::Natural)
    return std::nullopt;
  return style->settings().writingDirection == WritingDirection::RightToLeft;
}

} // namespace

static std::atomic<quint64> lastIdentifier = 0;

// What is left to measure. Goes over the text from left to right as it shows, one segment a step.
class TextLine::Measurement {
 public:
  Measurement(TextLine& line, std::optional<bool> rightToLeft)
      : line_(line), rightToLeft_(rightToLeft) {}

  // Takes one step. Whether there is nothing left.
  bool step();

 private:
  // A stretch that is laid out in one way.
  struct Part {
    qsizetype start = 0;
    qsizetype end = 0;
    std::size_t style = 0;
    bool rightToLeft = false;
  };

  bool findEmoji();
  bool nextPart();
  void enter(const DirectionRun& run);
  void addBreak();
  void placeNext();

  TextLine& line_;
  std::optional<bool> rightToLeft_;
  qsizetype emojiEnd_ = 0; // how far emoji have been looked for
  std::vector<Range> emoji_;
  std::vector<DirectionRun> runs_; // in visual order; none before they are known
  std::size_t run_ = 0;
  // The first styles of the parts of a run, in the order of the text.
  std::vector<std::size_t> starts_;
  std::size_t partsLeft_ = 0;
  Part part_;
  std::vector<qsizetype> breaks_; // of the part, as far as they are known
  std::size_t placed_ = 0;        // segments of the part
};

bool TextLine::Measurement::step() {
  if (runs_.empty()) {
    if (!findEmoji())
      runs_ = line_.takeDirections(rightToLeft_);
    return false;
  }
  if (!breaks_.empty() && breaks_.back() < part_.end)
    addBreak();
  else if (placed_ + 1 < breaks_.size())
    placeNext();
  else
    return !nextPart();
  return false;
}

// Whether there is more to look at.
bool TextLine::Measurement::findEmoji() {
  const qsizetype length = line_.text_.size();
  if (emojiEnd_ == length)
    return false;
  emojiEnd_ = findEmojiRanges(line_.text_, emojiEnd_, emojiStep, emoji_);
  if (emojiEnd_ < length)
    return true;
  line_.markEmoji(emoji_);
  return false;
}

// Goes on to the next part in visual order; false behind the last one.
bool TextLine::Measurement::nextPart() {
  breaks_.clear();
  placed_ = 0;
  while (partsLeft_ == 0) {
    if (run_ == runs_.size())
      return false;
    enter(runs_[run_++]);
  }
  const DirectionRun& run = runs_[run_ - 1];
  const std::size_t count = starts_.size();
  const std::size_t index = run.rightToLeft ? partsLeft_ - 1 : count - partsLeft_;
  --partsLeft_;
  const std::vector<StyledRange>& styles = line_.styles_;
  part_ = {std::max(run.start, styles[starts_[index]].start),
           index + 1 < count ? styles[starts_[index + 1]].start : run.start + run.length,
           starts_[index], run.rightToLeft};
  if (styles[part_.style].style.isPicture)
    line_.placePictures(part_.start, part_.end, part_.style, part_.rightToLeft);
  else
    breaks_.push_back(part_.start);
  return true;
}

// Finds the parts of a run that measure alike.
void TextLine::Measurement::enter(const DirectionRun& run) {
  const std::vector<StyledRange>& styles = line_.styles_;
  starts_.clear();
  auto style = std::partition_point(styles.begin(), styles.end(), [&](const StyledRange& range) {
    return range.end <= run.start;
  });
  for (; style != styles.end() && style->start < run.start + run.length; ++style)
    if (starts_.empty() || !style->style.measuresLike(styles[starts_.back()].style))
      starts_.push_back(std::size_t(style - styles.begin()));
  partsLeft_ = starts_.size();
}

void TextLine::Measurement::addBreak() {
  const TextStyle& shown = line_.styles_[part_.style].style;
  breaks_.push_back(
      shown.isEmoji ? nextEmojiBreak(line_.text_, breaks_.back(), part_.end)
                    : nextBreak(line_.text_, breaks_.back(), part_.end,
                                {shown.layoutFont(), part_.rightToLeft, line_.forcesDirection_}));
}

void TextLine::Measurement::placeNext() {
  const std::size_t count = breaks_.size() - 1;
  const std::size_t at = part_.rightToLeft ? count - 1 - placed_ : placed_;
  ++placed_;
  line_.place({breaks_[at], breaks_[at + 1] - breaks_[at], part_.style, part_.rightToLeft,
               line_.width_, nullptr});
}

TextLine::~TextLine() = default;

TextLine::TextLine(const QString& text, const std::vector<AttributedString::Run>& runs,
                   const Attributes& ifEmpty, Measuring measuring)
    : identifier_(++lastIdentifier), text_(onOneLine(text)) {
  if (text_.isEmpty()) {
    const TextStyle style = TextStyle::from(ifEmpty);
    ascent_ = style.face->ascent() * style.pointSize;
    descent_ = style.face->descent() * style.pointSize;
    leading_ = style.face->leading() * style.pointSize;
    return;
  }
  styles_.reserve(runs.size());
  for (const AttributedString::Run& run : runs) {
    qsizetype start = run.range.location;
    while (start < run.range.end() && continuesCharacter(text_, start))
      ++start;
    if (!styles_.empty())
      styles_.back().end = start;
    if (start < run.range.end())
      styles_.push_back({start, run.range.end(), TextStyle::from(run.attributes)});
  }
  if (styles_.empty())
    styles_.push_back({0, text_.size(), TextStyle::from({})});
  styles_.front().start = 0;
  styles_.back().end = text_.size();

  markPictures();
  measurement_ = std::make_unique<Measurement>(*this, directionOf(runs));
  if (measuring == Measuring::AtOnce)
    measureUntil(QDeadlineTimer(QDeadlineTimer::Forever));
}

bool TextLine::measureUntil(const QDeadlineTimer& deadline) {
  while (measurement_) {
    if (measurement_->step())
      measurement_.reset();
    else if (!deadline.isForever() && deadline.hasExpired())
      break;
  }
  return !measurement_;
}

// The order of the text as it shows.
std::vector<DirectionRun> TextLine::takeDirections(std::optional<bool> rightToLeft) {
  std::vector<DirectionRun> directions = directionRuns(text_, rightToLeft);
  // The order is known now; what directed it must not do so again within a segment.
  const QString text = text_;
  for (qsizetype i = 0; i < text.size(); ++i)
    if (const QChar c = text[i]; isDirectionControl(c.unicode())) {
      forcesDirection_ |= isDirectionOverride(c.unicode());
      text_[i] = QChar(zeroWidthSpace);
    }
  return directions;
}

void TextLine::markPictures() {
  const auto isPicture = [](const StyledRange& range) { return range.style.isPicture; };
  if (std::none_of(styles_.begin(), styles_.end(), isPicture))
    return;
  showsPictures_ = true;
  std::vector<StyledRange> marked;
  for (const StyledRange& styled : styles_) {
    if (!styled.style.isPicture) {
      marked.push_back(styled);
      continue;
    }
    for (qsizetype start = styled.start; start < styled.end;) {
      const bool pictures = isAttachmentCharacter(text_[start]);
      marked.push_back(styled);
      marked.back().start = start;
      while (start < styled.end && isAttachmentCharacter(text_[start]) == pictures)
        ++start;
      marked.back().end = start;
      if (!pictures) {
        marked.back().style.isPicture = false;
        marked.back().style.picture.reset();
      }
    }
  }
  styles_ = std::move(marked);
}

void TextLine::markEmoji(const std::vector<Range>& emoji) {
  if (emoji.empty() || !FontFace::emoji())
    return;
  std::vector<StyledRange> marked;
  auto range = emoji.begin();
  for (const StyledRange& styled : styles_) {
    for (qsizetype start = styled.start; start < styled.end;) {
      while (range != emoji.end() && range->end() <= start)
        ++range;
      const bool inside = range != emoji.end() && range->location <= start;
      const qsizetype limit = range == emoji.end() ? styled.end
                              : inside             ? range->end()
                                                   : range->location;
      marked.push_back(styled);
      marked.back().start = start;
      marked.back().end = start = std::min(limit, styled.end);
      marked.back().style.isEmoji = inside;
    }
  }
  styles_ = std::move(marked);
}

void TextLine::place(const Segment& at) {
  const TextStyle& shown = styles_[at.style].style;
  segments_.push_back({at.start, at.length, at.style, at.rightToLeft, at.x, nullptr});
  if (!shown.isEmoji || shown.kern != 0)
    return add(extentOf(layoutOf(segments_.size() - 1)), shown);
  const QFont font = shown.layoutFont();
  for (qsizetype i = at.start; i < at.start + at.length;) {
    const qsizetype next = std::max(i + 1, endOfEmoji(text_, i));
    add(emojiExtent(text_.mid(i, next - i), font), shown);
    i = next;
  }
}

void TextLine::add(const TextExtent& extent, const TextStyle& style) {
  const double scale = style.scale();
  // Marks without a letter may step back; the line never does.
  width_ += std::max(0.0, extent.width) * scale;
  // The run's own font counts even where others stand in for all of its characters.
  ascent_ =
      std::max(ascent_, std::max(extent.ascent * scale, style.face->ascent() * style.pointSize) +
                            style.baselineOffset);
  descent_ =
      std::max(descent_, std::max(extent.descent * scale, style.face->descent() * style.pointSize) -
                             style.baselineOffset);
  leading_ = std::max(leading_, style.face->leading() * style.pointSize);
  // Slanted letters and swashes leave their box by less than this.
  overhang_ = std::max(overhang_, 2 * style.pointSize);
}

void TextLine::placePictures(qsizetype start, qsizetype end, std::size_t style, bool rightToLeft) {
  const TextStyle& shown = styles_[style].style;
  const QSizeF size = shown.picture ? shown.picture->size() : QSizeF(0, 0);
  const double advance = std::max(0.0, size.width() + shown.kernInEms() * shown.pointSize);
  for (qsizetype i = 0; i < end - start; ++i) {
    segments_.push_back(
        {rightToLeft ? end - 1 - i : start + i, 1, style, rightToLeft, width_, nullptr});
    width_ += advance;
  }
  if (shown.picture) {
    ascent_ = std::max(ascent_, size.height() + shown.baselineOffset);
    descent_ = std::max(descent_, -shown.baselineOffset);
  }
  // Pictures are moved to whole pixels, and stay as wide as they are where the kern is negative.
  overhang_ = std::max({overhang_, 1.0, size.width() - advance});
}

} // namespace zq::platform
