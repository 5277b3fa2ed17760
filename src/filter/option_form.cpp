#include "filter/option_form.h"

#include <algorithm>
#include <utility>

#include "base/form_controls.h"
#include "filter/options.h"

namespace kapdf {

using Kind = SettingKind;

OptionForm::OptionForm(Direction direction, std::u16string_view registryPath, std::u16string_view options)
    : direction_(direction), registryPath_(registryPath) {
  const SettingUse use = direction == Direction::kImport ? SettingUse::kImport : SettingUse::kExport;
  for (const Setting &row : kSettings) {
    if (row.control == 0 || !row.IsFor(use)) continue;
    const platform::Settings key(registryPath_, row.place.key);
    rows_.push_back(&row);
    given_.push_back(0);
    platform::FormField &field = fields_.emplace_back();
    field.control = row.control;
    field.kind = row.kind;
    field.lowest = row.lowest;
    field.highest = row.highest;
    field.neededControl = row.neededControl;
    if (row.kind == Kind::kText)
      field.text = key.ReadString(row);
    else
      SetValue(fields_.size() - 1, row.kind == Kind::kReal ? key.ReadReal(row) : key.ReadInteger(row));
  }
  if (!options.empty()) TakeOptions(options);
}

uint32_t OptionForm::dialog() const { return direction_ == Direction::kImport ? FORM_IMPORT : FORM_EXPORT; }

// As it is stored. A choice that is not changed keeps a number that is none of its list.
double OptionForm::Value(size_t index) const {
  const platform::FormField &field = fields_[index];
  if (field.kind != Kind::kChoice) return field.number;
  return field.number == PlaceOf(index, given_[index]) ? given_[index] : field.number + field.lowest;
}

double OptionForm::PlaceOf(size_t index, double value) const {
  const Setting &row = *rows_[index];
  return value >= row.lowest && value <= row.highest ? value - row.lowest : row.otherwise;
}

void OptionForm::SetValue(size_t index, double value) {
  platform::FormField &field = fields_[index];
  given_[index] = value;
  if (field.kind == Kind::kSwitch)
    field.number = value != 0 ? 1 : 0;
  else
    field.number = field.kind == Kind::kChoice ? PlaceOf(index, value) : value;
}

// All of the string or nothing.
void OptionForm::TakeOptions(std::u16string_view options) {
  const OptionString given(options);
  std::vector<std::pair<size_t, double>> taken;
  for (size_t i = 0; i < rows_.size(); ++i) {
    if (rows_[i]->option.text.empty()) continue;
    taken.emplace_back(i, Value(i));
    if (!given.Take(*rows_[i], taken.back().second)) return;
  }
  for (const auto &[index, value] : taken) SetValue(index, value);
}

// A switch that stays on keeps the number that made it so: some settings go on to the host as they are.
int32_t OptionForm::WholeToStore(const platform::Settings &key, const Setting &row, double value) {
  const auto whole = static_cast<int32_t>(value);
  if (row.kind != Kind::kSwitch || whole == 0) return whole;
  const int32_t before = key.ReadInteger(row);
  return before != 0 ? before : whole;
}

void OptionForm::Save() const {
  for (size_t i = 0; i < fields_.size(); ++i) {
    const Setting &row = *rows_[i];
    for (const std::optional<SettingKey> place : {std::optional(row.place.key), row.place.second}) {
      if (!place) continue;
      const platform::Settings key(registryPath_, *place);
      if (row.kind == Kind::kText)
        key.WriteString(row, fields_[i].text);
      else if (row.kind == Kind::kReal)
        key.WriteReal(row, fields_[i].number);
      else
        key.WriteInteger(row, WholeToStore(key, row, Value(i)));
    }
  }
}

std::u16string OptionForm::Options() const {
  std::string text;
  for (size_t i = 0; i < rows_.size(); ++i) {
    const OptionWord &word = rows_[i]->option;
    if (word.text.empty() || (word.spelling == OptionWord::Spelling::kWhenOn && Value(i) == 0)) continue;
    if (!text.empty()) text += ' ';
    text += OptionString::Composed(*rows_[i], Value(i));
  }
  return {text.begin(), text.end()};
}

}  // namespace kapdf
