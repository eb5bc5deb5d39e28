// Values on their way to people: written as an indented tree or as JSON.
#pragma once

#include <QtCore/QString>

#include <utility>
#include <vector>

namespace zq::app {

// A JSON value whose members keep their order.
class OutputValue {
 public:
  using Member = std::pair<QString, OutputValue>;

  // null
  OutputValue() = default;

  static OutputValue boolean(bool value);
  static OutputValue integer(qint64 value);
  static OutputValue unsignedInteger(quint64 value);
  // Whole numbers have one decimal place, so that they are told from integers. What JSON has no
  // number for is the text "inf", "-inf" or "nan".
  static OutputValue real(double value);
  // A tree says how many UTF-16 code units a text beyond the basic plane has.
  static OutputValue string(QStringView value);
  static OutputValue list();
  static OutputValue map();

  void append(OutputValue element);
  void insert(const QString& key, OutputValue value);

  bool isList() const { return shape_ == Shape::List; }
  bool isMap() const { return shape_ == Shape::Map; }
  // The value under `key`, or null.
  const OutputValue* find(QStringView key) const;

  // Readable JSON, indented by two spaces.
  QString json(int indent = 0) const;
  // The members of a map as the lines of a tree.
  QString treeOfMembers() const;

  // `text` as a JSON string: lone surrogates, control characters and line separators escaped.
  static QString quoted(QStringView text);

 private:
  enum class Shape { Scalar, List, Map };

  bool isShort() const;
  QString heading(QStringList& shownKeys) const;
  void appendTree(QString& lines, const QString& label, int indent) const;

  Shape shape_ = Shape::Scalar;
  // Of a scalar, in JSON.
  QString text_ = QStringLiteral("null");
  // What only a tree says.
  QString note_;
  // Of a list, with empty keys, and of a map.
  std::vector<Member> members_;
};

} // namespace zq::app
