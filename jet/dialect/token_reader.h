#pragma once

#include <string>
#include <string_view>

#include "jet/dialect/names.h"
#include "jet/dialect/syntax_error.h"
#include "jet/dialect/token.h"

namespace jet::dialect {

/// Walks over a token list, asking for what is expected next.
class TokenReader {
  public:
    explicit TokenReader(const TokenList& list) : list_(list) {}

    const TokenList& List() const { return list_; }
    std::size_t Position() const { return at_; }
    const Token& Peek(std::size_t ahead = 0) const {
        return list_.tokens[std::min(at_ + ahead, list_.tokens.size() - 1)];
    }
    const Token& Take() {
        const Token& token = Peek();
        if (token.kind != Token::Kind::End) ++at_;
        return token;
    }

    bool IsWord(std::string_view word, std::size_t ahead = 0) const {
        return Peek(ahead).kind == Token::Kind::Word && SameName(Peek(ahead).text, word);
    }
    bool IsSymbol(std::string_view symbol, std::size_t ahead = 0) const {
        return Peek(ahead).kind == Token::Kind::Symbol && Peek(ahead).text == symbol;
    }
    bool TakeWord(std::string_view word) {
        if (!IsWord(word)) return false;
        ++at_;
        return true;
    }
    bool TakeSymbol(std::string_view symbol) {
        if (!IsSymbol(symbol)) return false;
        ++at_;
        return true;
    }
    void ExpectWord(std::string_view word) {
        if (!TakeWord(word)) Fail(std::string(word) + " is expected here");
    }
    void ExpectSymbol(std::string_view symbol) {
        if (!TakeSymbol(symbol)) Fail("'" + std::string(symbol) + "' is expected here");
    }
    void ExpectEnd() {
        TakeSymbol(";");
        if (Peek().kind != Token::Kind::End) Fail("an operator or the end is expected here");
    }

    [[noreturn]] void Fail(const std::string& fault) const {
        throw SyntaxError(Peek().place, Peek().text, fault);
    }

  private:
    const TokenList& list_;
    std::size_t at_ = 0;
};

}  // namespace jet::dialect
