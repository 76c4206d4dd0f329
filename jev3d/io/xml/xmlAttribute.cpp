#include "jev3d/io/xml/xmlAttribute.h"

#include <iomanip>
#include <sstream>

#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace IO {
namespace XML {

namespace {

template <class T>
std::wstring numberText(T number, int precision) {
  std::wostringstream s;
  if (precision) s << std::setprecision(precision);
  s << number;
  return s.str();
}

template <class T>
bool readWhole(const std::wstring& text, T& target) {
  std::wistringstream s(text);
  T read{};
  s >> read;
  if (s.fail()) return false;
  s >> std::ws;
  if (!s.eof()) return false;
  target = read;
  return true;
}

template <class T>
bool readLenient(const std::wstring& text, T& target) {
  std::wistringstream s(text);
  s >> target;
  return true;
}

}  // namespace

xmlAttribute::xmlAttribute(const std::wstring& n, const std::wstring& v) : name(n), value(v) {}
xmlAttribute::xmlAttribute(const std::wstring& n, const std::string& v) : name(n) { setValue(v); }
xmlAttribute::xmlAttribute(const std::wstring& n, int v) : name(n) { setValue(v); }
xmlAttribute::xmlAttribute(const std::wstring& n, unsigned int v) : name(n) { setValue(v); }
xmlAttribute::xmlAttribute(const std::wstring& n, float v) : name(n) { setValue(v); }
xmlAttribute::xmlAttribute(const std::wstring& n, double v) : name(n) { setValue(v); }
xmlAttribute::xmlAttribute(const std::string& n, const std::wstring& v)
    : xmlAttribute(utf8ToWstring(n), v) {}
xmlAttribute::xmlAttribute(const std::string& n, const std::string& v)
    : xmlAttribute(utf8ToWstring(n), v) {}
xmlAttribute::xmlAttribute(const std::string& n, int v) : xmlAttribute(utf8ToWstring(n), v) {}
xmlAttribute::xmlAttribute(const std::string& n, unsigned int v)
    : xmlAttribute(utf8ToWstring(n), v) {}
xmlAttribute::xmlAttribute(const std::string& n, float v) : xmlAttribute(utf8ToWstring(n), v) {}
xmlAttribute::xmlAttribute(const std::string& n, double v) : xmlAttribute(utf8ToWstring(n), v) {}

void xmlAttribute::setName(const std::string& n) { name = utf8ToWstring(n); }
void xmlAttribute::setValue(const std::string& v) { value = utf8ToWstring(v); }
void xmlAttribute::setValue(int v) { value = numberText(v, 0); }
void xmlAttribute::setValue(unsigned int v) { value = numberText(v, 0); }
void xmlAttribute::setValue(float v) { value = numberText(v, 7); }
void xmlAttribute::setValue(double v) { value = numberText(v, 16); }

const std::string& xmlAttribute::getName() const {
  nameNarrow = wstringToUtf8(name);
  return nameNarrow;
}

const std::string& xmlAttribute::getValue() const {
  valueNarrow = wstringToUtf8(value);
  return valueNarrow;
}

bool xmlAttribute::queryIntValue(int& target) const { return readWhole(value, target); }
bool xmlAttribute::queryLongValue(long& target) const { return readWhole(value, target); }
bool xmlAttribute::queryUnsignedIntValue(unsigned int& target) const {
  return readWhole(value, target);
}
bool xmlAttribute::queryFloatValue(float& target) const { return readLenient(value, target); }
bool xmlAttribute::queryDoubleValue(double& target) const { return readLenient(value, target); }

}  // namespace XML
}  // namespace IO
}  // namespace JEV
