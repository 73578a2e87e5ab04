#pragma once

#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace jet::test {

/// A value of the JSON files that describe sample databases.
class Json {
  public:
    using Array = std::vector<Json>;
    using Object = std::map<std::string, Json, std::less<>>;

    /// Throws std::runtime_error for a text that is not JSON.
    static Json Parse(std::string_view text);

    bool IsNull() const { return std::holds_alternative<std::monostate>(content_); }
    bool Flag() const { return std::get<bool>(content_); }
    double Number() const { return std::get<double>(content_); }
    const std::string& Text() const { return std::get<std::string>(content_); }
    const Array& Items() const { return std::get<Array>(content_); }
    const Object& Members() const { return std::get<Object>(content_); }
    const Json& operator[](std::string_view name) const;
    bool Has(std::string_view name) const { return Members().contains(name); }

  private:
    friend class JsonParser;
    std::variant<std::monostate, bool, double, std::string, Array, Object> content_;
};

}  // namespace jet::test
