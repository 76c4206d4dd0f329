#pragma once

#include <string>

namespace JEV {
namespace IO {
namespace XML {

// A name and a value, both wide. Numbers are stored as text: integers in plain decimal,
// float with 7 significant digits, double with 16.
class xmlAttribute {
 public:
  xmlAttribute() = default;
  xmlAttribute(const std::wstring& name, const std::wstring& value);
  xmlAttribute(const std::wstring& name, const std::string& value);
  xmlAttribute(const std::wstring& name, int value);
  xmlAttribute(const std::wstring& name, unsigned int value);
  xmlAttribute(const std::wstring& name, float value);
  xmlAttribute(const std::wstring& name, double value);
  xmlAttribute(const std::string& name, const std::wstring& value);
  xmlAttribute(const std::string& name, const std::string& value);
  xmlAttribute(const std::string& name, int value);
  xmlAttribute(const std::string& name, unsigned int value);
  xmlAttribute(const std::string& name, float value);
  xmlAttribute(const std::string& name, double value);
  virtual ~xmlAttribute() = default;

  void setName(const std::wstring& name) { this->name = name; }
  void setName(const std::string& name);
  void setValue(const std::wstring& value) { this->value = value; }
  void setValue(const std::string& value);
  void setValue(int value);
  void setValue(unsigned int value);
  void setValue(float value);
  void setValue(double value);

  const std::wstring& getNameW() const { return name; }
  const std::wstring& getValueW() const { return value; }
  // UTF-8 forms; each reference stays valid until the next call of the same getter.
  const std::string& getName() const;
  const std::string& getValue() const;

  // Integer reads are strict: the whole value, with white space around it, must be the
  // number, else false with `target` unchanged.
  bool queryIntValue(int& target) const;
  bool queryLongValue(long& target) const;
  bool queryUnsignedIntValue(unsigned int& target) const;
  // Float reads are lenient on purpose: they read what the stream reads and are always
  // true; a value that is no number leaves the stream's failure value (0) in `target`.
  bool queryFloatValue(float& target) const;
  bool queryDoubleValue(double& target) const;

 private:
  std::wstring name;
  std::wstring value;
  mutable std::string nameNarrow;
  mutable std::string valueNarrow;
};

}  // namespace XML
}  // namespace IO
}  // namespace JEV
