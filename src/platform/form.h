// Dialogs of fields that a person fills in. Only Windows has them.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "base/settings_table.h"

namespace kapdf::platform {

struct FormField {
  using Kind = SettingKind;

  uint32_t control = 0;  // form_controls.h
  Kind kind = Kind::kText;
  double lowest = 0, highest = 0;  // of numbers; of a text, the most units that it may have
  uint32_t neededControl = 0;      // the switch or choice that must not be 0 for the field to matter; 0 for none

  double number = 0;    // 0 or 1 of a switch; place in the list of a choice, -1 for none of it
  std::u16string text;  // of a text
};

enum class FormAnswer { kUnavailable, kConfirmed, kCancelled };

// Shows the dialog in front of the window, if that is one, and waits. Fields change only when they are confirmed, and
// then all numbers lie within their bounds.
FormAnswer ShowForm(void *window, uint32_t dialog, std::span<FormField> fields);

}  // namespace kapdf::platform
