#include "app/csv.h"

#include <fmt/format.h>
#include <istream>

#include "app/console.h"

namespace quillon {
namespace {

constexpr int End = std::char_traits<char>::eof();

}  // namespace

int CsvReader::Peek() const {
    return in_.peek();
}

int CsvReader::Take() {
    return in_.get();
}

bool CsvReader::TakeLineEnd() {
    if (Peek() != '\r' && Peek() != '\n') return false;
    if (Take() == '\r' && Peek() == '\n') Take();
    ++nextLine_;
    return true;
}

bool CsvReader::Next(std::vector<CsvField>& fields) {
    if (!begun_) {
        begun_ = true;
        for (const int mark : {0xEF, 0xBB, 0xBF})
            if (Peek() == mark) Take();
    }
    fields.clear();
    while (!oneField_ && TakeLineEnd())
        continue;
    if (Peek() == End) return false;
    line_ = nextLine_;
    while (true) {
        fields.push_back(TakeField());
        if (Peek() == End || TakeLineEnd()) break;
        Take();  // the separator
    }
    if (line_ == 1) oneField_ = fields.size() == 1;
    return true;
}

CsvField CsvReader::TakeField() {
    if (Peek() == '"') return TakeQuoted();
    std::string text;
    while (Peek() != End && Peek() != '\r' && Peek() != '\n' && Peek() != separator_)
        text += static_cast<char>(Take());
    if (text.empty()) return std::nullopt;
    return text;
}

std::string CsvReader::TakeQuoted() {
    const std::size_t began = nextLine_;
    std::string text;
    Take();
    while (true) {
        const int next = Take();
        if (next == End) throw CommandError(fmt::format("line {}: a quote has no end", began));
        if (next == '"') {
            if (Peek() != '"') break;
            Take();
        }
        if (next == '\n' || (next == '\r' && Peek() != '\n')) ++nextLine_;
        text += static_cast<char>(next);
    }
    if (Peek() != End && Peek() != '\r' && Peek() != '\n' && Peek() != separator_) {
        throw CommandError(fmt::format(
            "line {}: a field goes on behind its closing quote; a quote in a field is doubled, and "
            "--separator names another separator than the comma",
            nextLine_));
    }
    return text;
}

std::string CsvText(const CsvField& field) {
    if (!field) return "";
    const bool plain = !field->empty() && field->find_first_of(",;\t\"\r\n") == std::string::npos &&
                       field->front() != ' ' && field->back() != ' ';
    if (plain) return *field;
    std::string quoted = "\"";
    for (const char letter : *field) {
        quoted += letter;
        if (letter == '"') quoted += letter;
    }
    return quoted + '"';
}

}  // namespace quillon
