// Feeds that are JSON: JSON Feed 1.0 and 1.1.
#pragma once

#include "app/services/FeedBuilder.h"
#include "app/services/JsonTokenizer.h"

#include <vector>

namespace zq::app {

// Reads JSON in UTF-8, in pieces, into a builder.
class JsonFeedReader : private JsonTokenizer::Receiver {
 public:
  JsonFeedReader(const QUrl& base, FeedBuilder& builder, int deepest);

  // Reads on; without effect once it is done or has failed.
  void add(QByteArrayView text);

  // Whether the rest of the document does not matter: its object is closed, or there are enough
  // items.
  bool isDone() const override { return isDone_; }
  // Empty, or what is wrong in one line.
  const QString& errorText() const { return error_.isEmpty() ? tokenizer_.errorText() : error_; }
  // The line that has been read up to, from 1.
  qint64 line() const { return tokenizer_.line(); }

 private:
  enum class Scope { Root, Items, Item, Attachments, Attachment, Skipped };

  void beginObject() override;
  void endObject() override;
  void beginList() override;
  void endList() override { scopes_.pop_back(); }
  void name(const QString& name) override { name_ = name; }
  void text(const QString& text) override;
  void other() override {}

  void readFeedText(const QString& text);
  void readItemText(const QString& text);
  void readVersion(const QString& text);
  QUrl address(const QString& text) const { return webAddress(base_, text); }

  QUrl base_;
  FeedBuilder& builder_;
  JsonTokenizer tokenizer_;
  bool isDone_ = false;
  QString error_;
  std::vector<Scope> scopes_;
  QString name_;
  ItemDraft draft_;
  int descriptionRank_ = 0;
  QUrl attachment_;
  bool attachmentIsPicture_ = false;
};

} // namespace zq::app
