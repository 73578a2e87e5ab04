#pragma once

#include <initializer_list>
#include <oaidl.h>
#include <string>
#include <string_view>
#include <vector>

#include "platform/windows/system_headers.h"

namespace quillon {

/// The system's objects of other programs, usable by this thread for as long as this one lives.
class ComApartment {
  public:
    ComApartment();
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
    ~ComApartment();

  private:
    bool isOurs_;
};

/// An object of another program, whose members are found by their names. Failure: the description
/// that the object gives, or a text that says what failed.
class AutomationObject {
  public:
    AutomationObject() = default;
    /// Takes over one reference.
    explicit AutomationObject(IDispatch* object) : object_(object) {}
    AutomationObject(AutomationObject&& other) noexcept : object_(other.object_) {
        other.object_ = nullptr;
    }
    AutomationObject& operator=(AutomationObject&& other) noexcept;
    AutomationObject(const AutomationObject&) = delete;
    AutomationObject& operator=(const AutomationObject&) = delete;
    ~AutomationObject();

    /// Whether the system knows an object of this name.
    static bool IsRegistered(std::string_view programId);
    /// Starts it, or asks the program that has it.
    static AutomationObject Create(std::string_view programId);

    /// Calls a method, or asks for a property, and gives the result as a text.
    std::string Text(std::string_view member, std::initializer_list<std::string_view> texts = {});
    /// The same for a list of objects: a collection or an array.
    std::vector<AutomationObject> List(std::string_view member);

  private:
    void Invoke(std::string_view member, std::initializer_list<std::string_view> texts,
                VARIANT& result);

    IDispatch* object_ = nullptr;
};

}  // namespace quillon
