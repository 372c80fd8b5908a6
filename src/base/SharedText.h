#pragma once
#include <memory>
#include <string>
#include <utility>

namespace tarnwick {

/// An immutable text, which may be long: copies share it.
class SharedText {
 public:
  SharedText() : SharedText(std::string()) {}
  SharedText(std::string text) : text_(std::make_shared<const std::string>(std::move(text))) {}
  SharedText(const char* text) : SharedText(std::string(text)) {}

  const std::string& get() const { return *text_; }
  operator const std::string&() const { return *text_; }

  friend bool operator==(const SharedText& a, const SharedText& b) {
    return a.text_ == b.text_ || *a.text_ == *b.text_;
  }

 private:
  std::shared_ptr<const std::string> text_;
};

}  // namespace tarnwick
