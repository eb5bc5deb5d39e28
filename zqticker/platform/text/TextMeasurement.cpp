// How a line is measured.
#include "zqticker/platform/graphics/FontFace_p.h"
#include "zqticker/platform/graphics/Image.h"
#include "zqticker/platform/text/LineCharacters_p.h"
#include "zqticker/platform/text/ParagraphStyle.h"
#include "zqticker/platform/text/TextAttachment.h"
#include "zqticker/platform/text/TextLine_p.h"
#include "zqticker/platform/text/emoji_p.h"
#include "zqticker/platform/text/line_breaks_p.h"

#include <algorithm>
#include <atomic>

namespace zq::platform {

namespace {

// What a step does at most: looks up the styles of runs, cuts pieces off, looks through styles,
// and places the pictures of one piece.
constexpr std::size_t runsOfStep = 64;
constexpr int piecesOfStep = 1024;
constexpr int stylesOfStep = 4096;
constexpr qsizetype picturesOfPiece = 1024;

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

// What is left to measure: reads the characters, finds the styles, cuts them so that pictures and
// emoji have styles of their own, and goes over the text from left to right as it shows, one
// segment a step.
class TextLine::Measurement {
 public:
  Measurement(TextLine& line, const QString& text, std::vector<AttributedString::Run> runs)
      : line_(line), runs_(std::move(runs)), reading_(text, directionOf(runs_)) {}

  // Takes one step, or waits until `deadline` for what another thread finds. Whether there is
  // nothing left.
  bool step(const QDeadlineTimer& deadline);

 private:
  enum class Phase { Reading, Styling, Cutting, Placing };
  // A stretch that is laid out in one way.
  struct Part {
    qsizetype start = 0;
    qsizetype end = 0;
    std::size_t style = 0;
    bool rightToLeft = false;
  };

  void read(const QDeadlineTimer& deadline);
  void addStyles();
  void cutStyles();
  StyledRange takePiece();
  bool placeFurther();
  void enter(const DirectionRun& run);
  void findParts();
  void nextPart();
  void addBreak();
  void placeNext();

  TextLine& line_;
  Phase phase_ = Phase::Reading;
  std::vector<AttributedString::Run> runs_;
  LineReading reading_;
  LineCharacters characters_;
  std::size_t styledRuns_ = 0;
  std::vector<StyledRange> uncut_;
  // The first that is not cut, and the first emoji behind what is.
  std::size_t nextUncut_ = 0;
  std::size_t nextEmoji_ = 0;
  std::size_t run_ = 0; // of one direction, the next in visual order
  // The first styles of the parts of a run, in the order of the text, and how far they are known.
  std::vector<std::size_t> starts_;
  std::size_t entered_ = 0;
  bool isEntering_ = false;
  std::size_t partsLeft_ = 0;
  Part part_;
  std::vector<qsizetype> breaks_; // of the part, as far as they are known
  std::size_t placed_ = 0;        // segments of the part
};

bool TextLine::Measurement::step(const QDeadlineTimer& deadline) {
  switch (phase_) {
  case Phase::Reading:
    read(deadline);
    return false;
  case Phase::Styling:
    addStyles();
    return false;
  case Phase::Cutting:
    cutStyles();
    return false;
  case Phase::Placing:
    break;
  }
  return !placeFurther();
}

void TextLine::Measurement::read(const QDeadlineTimer& deadline) {
  std::optional<LineCharacters> characters = reading_.takeUntil(deadline);
  if (!characters)
    return;
  characters_ = std::move(*characters);
  line_.text_ = std::move(characters_.text);
  line_.forcesDirection_ = characters_.forcesDirection;
  if (!FontFace::emoji())
    characters_.emoji.clear();
  phase_ = Phase::Styling;
}

void TextLine::Measurement::addStyles() {
  const std::size_t end = std::min(styledRuns_ + runsOfStep, runs_.size());
  for (; styledRuns_ < end; ++styledRuns_) {
    const AttributedString::Run& run = runs_[styledRuns_];
    qsizetype start = run.range.location;
    while (start < run.range.end() && continuesCharacter(line_.text_, start))
      ++start;
    if (start == run.range.end())
      continue;
    TextStyle style = TextStyle::from(run.attributes);
    line_.showsPictures_ |= style.isPicture;
    if (!uncut_.empty())
      uncut_.back().end = start;
    uncut_.push_back({start, run.range.end(), std::move(style)});
  }
  if (styledRuns_ < runs_.size())
    return;
  if (uncut_.empty())
    uncut_.push_back({0, 0, TextStyle::from({})});
  uncut_.front().start = 0;
  uncut_.back().end = line_.text_.size();
  phase_ = Phase::Cutting;
}

void TextLine::Measurement::cutStyles() {
  for (int i = 0; i < piecesOfStep && nextUncut_ < uncut_.size(); ++i)
    line_.styles_.push_back(takePiece());
  if (nextUncut_ == uncut_.size())
    phase_ = Phase::Placing;
}

// Cuts the next piece off what is uncut.
TextLine::StyledRange TextLine::Measurement::takePiece() {
  const QString& text = line_.text_;
  const std::vector<Range>& emoji = characters_.emoji;
  StyledRange& rest = uncut_[nextUncut_];
  StyledRange piece = rest;
  if (piece.style.isPicture) {
    // The other characters of a run with a picture show as they are.
    const bool isPicture = isAttachmentCharacter(text[rest.start]);
    const qsizetype limit = std::min(rest.end, rest.start + picturesOfPiece);
    piece.end = rest.start + 1;
    while (piece.end < limit && isAttachmentCharacter(text[piece.end]) == isPicture)
      ++piece.end;
    if (!isPicture) {
      piece.style.isPicture = false;
      piece.style.picture.reset();
    }
  }
  while (nextEmoji_ < emoji.size() && emoji[nextEmoji_].end() <= rest.start)
    ++nextEmoji_;
  if (nextEmoji_ < emoji.size()) {
    const Range& next = emoji[nextEmoji_];
    piece.style.isEmoji = next.location <= rest.start;
    piece.end = std::min(piece.end, piece.style.isEmoji ? next.end() : next.location);
  }
  rest.start = piece.end;
  if (rest.start == rest.end)
    ++nextUncut_;
  return piece;
}

// False behind the last part.
bool TextLine::Measurement::placeFurther() {
  if (!breaks_.empty() && breaks_.back() < part_.end)
    addBreak();
  else if (placed_ + 1 < breaks_.size())
    placeNext();
  else if (isEntering_)
    findParts();
  else if (partsLeft_ > 0)
    nextPart();
  else if (run_ < characters_.directions.size())
    enter(characters_.directions[run_++]);
  else
    return false;
  return true;
}

void TextLine::Measurement::enter(const DirectionRun& run) {
  const std::deque<StyledRange>& styles = line_.styles_;
  starts_.clear();
  const auto first =
      std::partition_point(styles.begin(), styles.end(),
                           [&](const StyledRange& range) { return range.end <= run.start; });
  entered_ = std::size_t(first - styles.begin());
  isEntering_ = true;
}

// Finds the parts of a run that measure alike.
void TextLine::Measurement::findParts() {
  const std::deque<StyledRange>& styles = line_.styles_;
  const DirectionRun& run = characters_.directions[run_ - 1];
  const auto isInside = [&] {
    return entered_ < styles.size() && styles[entered_].start < run.start + run.length;
  };
  for (int i = 0; i < stylesOfStep && isInside(); ++i, ++entered_)
    if (starts_.empty() || !styles[entered_].style.measuresLike(styles[starts_.back()].style))
      starts_.push_back(entered_);
  isEntering_ = isInside();
  if (!isEntering_)
    partsLeft_ = starts_.size();
}

// Goes on to the next part in visual order.
void TextLine::Measurement::nextPart() {
  breaks_.clear();
  placed_ = 0;
  const DirectionRun& run = characters_.directions[run_ - 1];
  const std::size_t count = starts_.size();
  const std::size_t index = run.rightToLeft ? partsLeft_ - 1 : count - partsLeft_;
  --partsLeft_;
  const std::deque<StyledRange>& styles = line_.styles_;
  part_ = {std::max(run.start, styles[starts_[index]].start),
           index + 1 < count ? styles[starts_[index + 1]].start : run.start + run.length,
           starts_[index], run.rightToLeft};
  if (styles[part_.style].style.isPicture)
    line_.placePictures(part_.start, part_.end, part_.style, part_.rightToLeft);
  else
    breaks_.push_back(part_.start);
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
    : identifier_(++lastIdentifier), text_(text) {
  if (text_.isEmpty()) {
    const TextStyle style = TextStyle::from(ifEmpty);
    ascent_ = style.face->ascent() * style.pointSize;
    descent_ = style.face->descent() * style.pointSize;
    leading_ = style.face->leading() * style.pointSize;
    return;
  }
  measurement_ = std::make_unique<Measurement>(*this, text, runs);
  if (measuring == Measuring::AtOnce)
    measureUntil(QDeadlineTimer(QDeadlineTimer::Forever));
}

bool TextLine::measureUntil(const QDeadlineTimer& deadline) {
  while (measurement_) {
    if (measurement_->step(deadline))
      measurement_.reset();
    else if (!deadline.isForever() && deadline.hasExpired())
      break;
  }
  return !measurement_;
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
