#pragma once

namespace tarnwick {

/// Follows one JSON number byte by byte, so that a number of any length is checked without being held.
class NumberScanner {
 public:
  static bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }
  /// Whether a number may begin with `byte`.
  static bool isStart(char byte) { return byte == '-' || isDigit(byte); }
  /// Whether `byte` occurs in numbers at all.
  static bool isPart(char byte) {
    return isStart(byte) || byte == '+' || byte == '.' || isExponentMark(byte);
  }

  /// Takes the next byte. @return false when no number goes on like that.
  bool take(char byte) {
    if (isDigit(byte)) return takeDigit(byte);
    if (byte == '-' && at_ == At::start) return moveTo(At::minus);
    if (byte == '.' && (at_ == At::zero || at_ == At::whole)) return moveTo(At::point);
    if (isExponentMark(byte) && isComplete() && at_ != At::exponent) return moveTo(At::exponentMark);
    if ((byte == '+' || byte == '-') && at_ == At::exponentMark) return moveTo(At::exponentSign);
    return false;
  }

  /// Whether the number may end here.
  bool isComplete() const {
    return at_ == At::zero || at_ == At::whole || at_ == At::fraction || at_ == At::exponent;
  }

 private:
  enum class At { start, minus, zero, whole, point, fraction, exponentMark, exponentSign, exponent };

  static bool isExponentMark(char byte) { return byte == 'e' || byte == 'E'; }

  bool takeDigit(char digit) {
    switch (at_) {
      case At::start:
      case At::minus:
        return moveTo(digit == '0' ? At::zero : At::whole);
      case At::zero:
        return false;
      case At::point:
        return moveTo(At::fraction);
      case At::exponentMark:
      case At::exponentSign:
        return moveTo(At::exponent);
      case At::whole:
      case At::fraction:
      case At::exponent:
        return true;
    }
    return false;
  }

  bool moveTo(At at) {
    at_ = at;
    return true;
  }

  At at_ = At::start;
};

}  // namespace tarnwick
