#include "jet/storage/value_check.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include "jet/error.h"
#include "jet/storage/format/values.h"

namespace jet::storage {

namespace {

class Checker {
  public:
    Checker(const ColumnDefinition& column, const std::string& table)
        : column_(column), table_(table) {}

    void Check(const Value& value) const {
        switch (column_.type) {
            case ColumnType::Boolean:
                Need<bool>(value);
                break;
            case ColumnType::Byte:
                CheckRange<std::uint8_t>(value);
                break;
            case ColumnType::Integer:
                CheckRange<std::int16_t>(value);
                break;
            case ColumnType::Long:
                CheckRange<std::int32_t>(value);
                break;
            case ColumnType::Currency:
                Need<Currency>(value);
                break;
            case ColumnType::Single:
                CheckSingle(Need<double>(value));
                break;
            case ColumnType::Double:
                Need<double>(value);
                break;
            case ColumnType::Date:
                Need<Date>(value);
                break;
            case ColumnType::Binary:
                CheckSize(Need<Bytes>(value).size(), "bytes");
                break;
            case ColumnType::Text:
                CheckText(Need<std::string>(value));
                break;
            case ColumnType::Ole:
                Need<Bytes>(value);
                break;
            case ColumnType::Memo:
                Need<std::string>(value);
                break;
            case ColumnType::Guid:
                Need<Guid>(value);
                break;
            case ColumnType::Decimal:
                Need<Decimal>(value);
                break;
        }
    }

    [[noreturn]] void Fail(ErrorKind kind, const std::string& reason) const {
        throw Error(kind, "Field " + column_.name + " of table " + table_ + " " + reason + ".");
    }

  private:
    template <typename T>
    const T& Need(const Value& value) const {
        if (const T* held = std::get_if<T>(&value)) return *held;
        Fail(ErrorKind::TypeMismatch, "cannot hold a value of this type");
    }

    template <typename T>
    void CheckRange(const Value& value) const {
        const std::int64_t number = Need<std::int64_t>(value);
        if (number < std::numeric_limits<T>::min() || number > std::numeric_limits<T>::max()) {
            Fail(ErrorKind::Overflow, "cannot hold the number " + std::to_string(number));
        }
    }

    void CheckSingle(double number) const {
        if (std::isfinite(number) && !std::isfinite(static_cast<float>(number))) {
            Fail(ErrorKind::Overflow, "cannot hold so large a number");
        }
    }

    void CheckText(const std::string& text) const {
        // A character takes at least as many bytes as units, so short texts need no counting.
        if (text.size() > column_.size) CheckSize(ToUtf16(text).size(), "characters");
    }

    void CheckSize(std::size_t size, const char* unit) const {
        if (size <= column_.size) return;
        Fail(ErrorKind::TooLong, "holds at most " + std::to_string(column_.size) + " " + unit +
                                     ", the value has " + std::to_string(size));
    }

    const ColumnDefinition& column_;
    const std::string& table_;
};

}  // namespace

void CheckValue(const Value& value, const ColumnDefinition& column, const std::string& table) {
    const Checker checker(column, table);
    if (!IsNull(value)) {
        checker.Check(value);
    } else if (column.required && !column.autoNumber && column.type != ColumnType::Boolean) {
        checker.Fail(ErrorKind::Required, "needs a value");
    }
}

}  // namespace jet::storage
