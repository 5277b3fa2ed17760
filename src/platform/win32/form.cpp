#include "platform/form.h"

#include <windows.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cwchar>
#include <vector>

#include "base/catch_all.h"
#include "base/form_controls.h"
#include "platform/win32/instance.h"
#include "platform/win32/wide.h"

namespace kapdf::platform {
namespace {

using Kind = FormField::Kind;

std::wstring ResourceText(UINT number) {
  const wchar_t *text = nullptr;  // with a buffer of no bytes, where it stands in the module
  const int length = LoadStringW(Instance(), number, reinterpret_cast<wchar_t *>(&text), 0);
  return length > 0 ? std::wstring(text, static_cast<size_t>(length)) : std::wstring();
}

// Numbers have a point whatever the system's language; a comma is taken for one.
std::wstring TextOf(double number) {
  char text[64];
  return std::wstring(text, std::to_chars(text, text + sizeof text, number).ptr);
}

bool ReadNumber(std::wstring text, double &number) {
  std::string ascii;
  for (const wchar_t c : text)
    if (c != L' ') ascii += c == L',' ? '.' : c > 0 && c < 128 ? static_cast<char>(c) : '?';
  const char *const end = ascii.data() + ascii.size();
  const auto read = std::from_chars(ascii.data(), end, number);
  return read.ec == std::errc() && read.ptr == end && std::isfinite(number);
}

class Form {
 public:
  explicit Form(std::span<FormField> fields) : fields_(fields) {}

  INT_PTR Run(HWND parent, uint32_t dialog) {
    return DialogBoxParamW(Instance(), MAKEINTRESOURCEW(dialog), parent, Handle, reinterpret_cast<LPARAM>(this));
  }

 private:
  static INT_PTR CALLBACK Handle(HWND dialog, UINT message, WPARAM a, LPARAM b) {
    INT_PTR answer = TRUE;
    const bool answered = CatchAll(false, [&] {  // the system's frames lie above
      answer = Answer(dialog, message, a, b);
      return true;
    });
    if (!answered) EndDialog(dialog, -1);
    return answer;
  }

  static INT_PTR Answer(HWND dialog, UINT message, WPARAM a, LPARAM b) {
    if (message == WM_INITDIALOG) {
      SetWindowLongPtrW(dialog, DWLP_USER, b);
      reinterpret_cast<Form *>(b)->Fill(dialog);
      return TRUE;
    }
    auto *form = reinterpret_cast<Form *>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (message != WM_COMMAND || !form) return FALSE;
    if (LOWORD(a) == IDOK && form->Take(dialog)) EndDialog(dialog, IDOK);
    if (LOWORD(a) == IDCANCEL) EndDialog(dialog, IDCANCEL);
    form->Enable(dialog);
    return TRUE;
  }

  void Fill(HWND dialog) {
    for (const FormField &field : fields_) {
      const auto control = static_cast<int>(field.control);
      switch (field.kind) {
        case Kind::kSwitch:
          CheckDlgButton(dialog, control, field.number != 0 ? BST_CHECKED : BST_UNCHECKED);
          break;
        case Kind::kChoice:
          FillChoice(GetDlgItem(dialog, control), field);
          break;
        case Kind::kText:
          SendDlgItemMessageW(dialog, control, EM_LIMITTEXT, static_cast<WPARAM>(field.highest), 0);
          SetDlgItemTextW(dialog, control, Wide(field.text).c_str());
          break;
        default:
          SetDlgItemTextW(dialog, control, TextOf(field.number).c_str());
      }
    }
    Enable(dialog);
  }

  static void FillChoice(HWND list, const FormField &field) {
    const std::wstring texts = ResourceText(field.control) + L'|';
    for (size_t at = 0, bar; (bar = texts.find(L'|', at)) != std::wstring::npos; at = bar + 1)
      SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(texts.substr(at, bar - at).c_str()));
    SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(static_cast<int>(field.number)), 0);
  }

  static double NumberIn(HWND dialog, const FormField &field) {
    const auto control = static_cast<int>(field.control);
    if (field.kind == Kind::kSwitch) return IsDlgButtonChecked(dialog, control) == BST_CHECKED ? 1 : 0;
    return static_cast<double>(SendDlgItemMessageW(dialog, control, CB_GETCURSEL, 0, 0));
  }

  void Enable(HWND dialog) const {
    for (const FormField &field : fields_) {
      const auto needed = std::ranges::find(fields_, field.neededControl, &FormField::control);
      if (field.neededControl == 0 || needed == fields_.end()) continue;
      EnableWindow(GetDlgItem(dialog, static_cast<int>(field.control)), NumberIn(dialog, *needed) > 0);
    }
  }

  // False, with a word to the person, when a field does not hold what it should.
  bool Take(HWND dialog) {
    std::vector<FormField> taken(fields_.begin(), fields_.end());
    for (FormField &field : taken) {
      if (field.kind == Kind::kSwitch || field.kind == Kind::kChoice) {
        field.number = NumberIn(dialog, field);
        continue;
      }
      const HWND edit = GetDlgItem(dialog, static_cast<int>(field.control));
      std::wstring text(static_cast<size_t>(GetWindowTextLengthW(edit)) + 1, L'\0');
      text.resize(static_cast<size_t>(GetWindowTextW(edit, text.data(), static_cast<int>(text.size()))));
      if (field.kind == Kind::kText) {
        field.text = FromWide(text);
        continue;
      }
      double number = 0;
      const bool whole = field.kind == Kind::kReal || (ReadNumber(text, number) && number == std::floor(number));
      if (!whole || !ReadNumber(text, number) || number < field.lowest || number > field.highest) {
        if (IsWindowEnabled(edit)) {
          Complain(dialog, edit, field);
          return false;
        }
        number = std::clamp(field.number, field.lowest, field.highest);  // it does not matter now and keeps what it had
      }
      field.number = number;
    }
    std::ranges::move(taken, fields_.begin());
    return true;
  }

  static void Complain(HWND dialog, HWND edit, const FormField &field) {
    std::wstring text = ResourceText(FORM_WRONG_NUMBER);
    for (const auto &[mark, number] : {std::pair(L"%1", field.lowest), {L"%2", field.highest}})
      if (const size_t at = text.find(mark); at != std::wstring::npos) text.replace(at, 2, TextOf(number));
    MessageBoxW(dialog, text.c_str(), L"PDF", MB_OK | MB_ICONINFORMATION);
    SetFocus(edit);
    SendMessageW(edit, EM_SETSEL, 0, -1);
  }

  std::span<FormField> fields_;
};

}  // namespace

FormAnswer ShowForm(void *window, uint32_t dialog, std::span<FormField> fields) {
  const auto parent = static_cast<HWND>(window);
  switch (Form(fields).Run(IsWindow(parent) ? parent : nullptr, dialog)) {
    case IDOK:
      return FormAnswer::kConfirmed;
    case IDCANCEL:
      return FormAnswer::kCancelled;
    default:
      return FormAnswer::kUnavailable;
  }
}

}  // namespace kapdf::platform
