// The gun edit form: the window of the EditGunDialog working copy, on its template.
#include "shell/qt/edit_gun_form.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QValidator>
#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdio>

#include "base/string_util.h"
#include "platform/number_text.h"
#include "shell/qt/shell_dialogs.h"

WindowPlacement EditPlacement = {44, 0, 1, 0, 0, 0, 0};
std::int32_t EditPlacementUnset = 1;

namespace {

constexpr int kAccepted = 1;
constexpr int kShownDigits = 6;

// Stops typing past `limit` UTF-8 bytes (0: no limit), but lets a longer text that was put in
// from a record stay and be shortened: OK refuses it until it fits.
class ByteLimit : public QValidator {
 public:
  explicit ByteLimit(QObject* parent) : QValidator(parent) {}
  void SetLimit(int limit) { limit_ = allowed_ = limit; }
  int Limit() const { return limit_; }
  void Allow(int bytes) { allowed_ = std::max(limit_, bytes); }
  State validate(QString& input, int&) const override {
    if (limit_ == 0) return Acceptable;
    int bytes = static_cast<int>(input.toUtf8().size());
    if (bytes <= limit_) return Acceptable;
    return bytes <= allowed_ ? Intermediate : Invalid;
  }

 private:
  int limit_ = 0;
  int allowed_ = 0;
};

// One line of text whose bytes are kept as they came until the user edits them, so that a
// text that doesn't decode cleanly goes back unchanged.
class FormField : public QLineEdit {
 public:
  explicit FormField(QWidget* parent) : QLineEdit(parent), limit_(new ByteLimit(this)) {
    setValidator(limit_);
    connect(this, &QLineEdit::textEdited, this,
            [this](const QString& text) { limit_->Allow(static_cast<int>(text.toUtf8().size())); });
  }
  void Fill(const QByteArray& bytes) {
    original_ = bytes;
    limit_->Allow(static_cast<int>(bytes.size()));
    setText(QString::fromUtf8(bytes));
  }
  QByteArray Bytes() const { return isModified() ? text().toUtf8() : original_; }
  void SetLimit(int limit) { limit_->SetLimit(limit); }
  // The bytes fit the limit that typing is held to.
  bool Fits() const { return limit_->Limit() == 0 || Bytes().size() <= limit_->Limit(); }

 private:
  ByteLimit* limit_;
  QByteArray original_;
};

enum class Kind { kButton, kEdit, kLabel, kGroup, kCheck };

// One control of template 129, in template (and tab) order; x, y, width, height in dialog units.
struct TemplateControl {
  Kind kind;
  const char* name;  // a member of EditGunDialog for fields and the check box
  const char* text;
  int x, y, width, height;
};

const TemplateControl kTemplate[] = {
    {Kind::kButton, "OK", "OK", 240, 265, 50, 14},
    {Kind::kButton, "Cancel", "Cancel", 295, 265, 50, 14},
    {Kind::kEdit, "TypeName", "", 20, 20, 95, 14},
    {Kind::kEdit, "FullName", "", 120, 21, 220, 14},
    {Kind::kEdit, "Caliber", "", 20, 50, 60, 14},
    {Kind::kEdit, "ROF", "", 85, 50, 60, 14},
    {Kind::kEdit, "MuzzleVel", "", 150, 50, 60, 14},
    {Kind::kEdit, "AmmoWt", "", 215, 50, 60, 14},
    {Kind::kEdit, "WarheadWt", "", 281, 50, 60, 14},
    {Kind::kEdit, "Accuracy", "", 20, 80, 60, 14},
    {Kind::kEdit, "Reliability", "", 85, 80, 60, 14},
    {Kind::kEdit, "GunFireEffect", "", 20, 120, 100, 14},
    {Kind::kEdit, "GunFireSound", "", 130, 120, 100, 14},
    {Kind::kEdit, "EffectClassName", "", 240, 120, 100, 14},
    {Kind::kEdit, "FireColorR", "", 105, 151, 35, 14},
    {Kind::kEdit, "FireColorG", "", 141, 151, 35, 14},
    {Kind::kEdit, "FireColorB", "", 175, 151, 35, 14},
    {Kind::kEdit, "TracerTexture", "", 20, 201, 100, 14},
    {Kind::kEdit, "TracerSize", "", 20, 231, 60, 14},
    {Kind::kEdit, "TracerDistFactor", "", 150, 231, 60, 14},
    {Kind::kEdit, "TracerLength", "", 85, 231, 60, 14},
    {Kind::kLabel, "", "Type Name", 20, 10, 38, 8},
    {Kind::kLabel, "", "Full Name", 120, 10, 32, 8},
    {Kind::kLabel, "", "Caliber (mm)", 20, 40, 39, 8},
    {Kind::kLabel, "", "ROF (rpm)", 85, 40, 33, 8},
    {Kind::kLabel, "", "Muzzle Vel. (m/s)", 150, 40, 55, 8},
    {Kind::kLabel, "", "Ammo Wt (g)", 215, 40, 42, 8},
    {Kind::kLabel, "", "Warhead Wt (g)", 281, 40, 52, 8},
    {Kind::kLabel, "", "Gun Fire Effect Name", 20, 110, 69, 8},
    {Kind::kLabel, "", "Gun Fire Sound Name", 130, 110, 71, 8},
    {Kind::kLabel, "", "Gun Effect Name", 240, 110, 56, 8},
    {Kind::kLabel, "", "Tracer Material Name", 20, 191, 69, 8},
    {Kind::kLabel, "", "Tracer Size", 20, 220, 37, 8},
    {Kind::kLabel, "", "Tracer Dist. Factor", 150, 220, 60, 8},
    {Kind::kLabel, "", "Tracer Length", 85, 220, 46, 8},
    {Kind::kLabel, "", "Accuracy", 20, 70, 31, 8},
    {Kind::kLabel, "", "Reliability", 85, 70, 30, 8},
    {Kind::kLabel, "", "Gun Fire Color ( R - G - B )", 105, 140, 83, 8},
    {Kind::kGroup, "", "", 10, 180, 340, 75},
    {Kind::kGroup, "", "", 10, 100, 340, 75},
    {Kind::kGroup, "", "", 10, 0, 340, 100},
    {Kind::kCheck, "AddLight", "Add Light Source", 20, 145, 71, 10},
    {Kind::kEdit, "MaxVisibleDist", "", 215, 231, 60, 14},
    {Kind::kEdit, "MaxStreakVisibleDist", "", 281, 231, 60, 14},
    {Kind::kLabel, "", "Max Visible Dist", 215, 220, 50, 8},
    {Kind::kLabel, "", "Max Streak Dist", 281, 220, 51, 8},
    {Kind::kEdit, "MaxLightRange", "", 215, 151, 60, 14},
    {Kind::kLabel, "", "Max Light Range", 215, 140, 55, 8},
    {Kind::kEdit, "EffectTime", "", 281, 150, 60, 14},
    {Kind::kLabel, "", "Effect Time", 281, 140, 37, 8},
};

using TextMember = char (EditGunDialog::*)[EditGunDialog::kTextSize];

// One step of the exchange between a control and its member, in exchange order (which is the
// order in which OK refuses, not the tab order). Exactly one member pointer is set.
struct Exchange {
  const char* name;
  const char* label;  // how the user knows the field
  float EditGunDialog::*number;
  TextMember text;
  std::int32_t EditGunDialog::*check;
  int limit;  // bytes a text takes; 0 for none
};

#define NUMBER(member, label) {#member, label, &EditGunDialog::member, nullptr, nullptr, 0}
#define TEXT(member, label, limit) {#member, label, nullptr, &EditGunDialog::member, nullptr, limit}
const Exchange kExchange[] = {
    NUMBER(AmmoWt, "Ammo Wt (g)"),
    NUMBER(Caliber, "Caliber (mm)"),
    TEXT(FullName, "Full Name", 63),
    TEXT(GunFireEffect, "Gun Fire Effect Name", 31),
    TEXT(GunFireSound, "Gun Fire Sound Name", 31),
    NUMBER(MuzzleVel, "Muzzle Vel. (m/s)"),
    NUMBER(TracerLength, "Tracer Length"),
    TEXT(TracerTexture, "Tracer Material Name", 31),
    NUMBER(TracerSize, "Tracer Size"),
    NUMBER(WarheadWt, "Warhead Wt (g)"),
    NUMBER(TracerDistFactor, "Tracer Dist. Factor"),
    NUMBER(ROF, "ROF (rpm)"),
    TEXT(TypeName, "Type Name", 31),
    NUMBER(Accuracy, "Accuracy"),
    NUMBER(FireColorG, "Gun Fire Color (G)"),
    NUMBER(FireColorB, "Gun Fire Color (B)"),
    NUMBER(FireColorR, "Gun Fire Color (R)"),
    NUMBER(Reliability, "Reliability"),
    {"AddLight", "Add Light Source", nullptr, nullptr, &EditGunDialog::AddLight, 0},
    NUMBER(MaxStreakVisibleDist, "Max Streak Dist"),
    NUMBER(MaxVisibleDist, "Max Visible Dist"),
    NUMBER(MaxLightRange, "Max Light Range"),
    TEXT(EffectClassName, "Gun Effect Name", 0),
    NUMBER(EffectTime, "Effect Time"),
};
#undef NUMBER
#undef TEXT

QWidget* newControl(const TemplateControl& control, QWidget* parent) {
  switch (control.kind) {
    case Kind::kButton:
      return newTemplateButton(control.text, parent);
    case Kind::kEdit:
      return new FormField(parent);
    case Kind::kLabel:
      return new QLabel(QString::fromUtf8(control.text), parent);
    case Kind::kGroup:
      return newTemplateGroup(parent);
    case Kind::kCheck:
      return new QCheckBox(QString::fromUtf8(control.text), parent);
  }
  return nullptr;
}

}  // namespace

EditGunForm::EditGunForm(QWidget* parent, EditGunDialog* data)
    : TemplateDialog(parent, 357, 290), data_(data) {
  SetCaptionText(QStringLiteral("Edit Gun Data"));
  for (const TemplateControl& control : kTemplate) {
    QWidget* widget = newControl(control, this);
    Place(widget, control.name, control.x, control.y, control.width, control.height);
    if (control.kind == Kind::kGroup) widget->lower();
  }
  for (const Exchange& step : kExchange) {
    if (step.text) static_cast<FormField*>(Field(step.name))->SetLimit(step.limit);
  }
  connect(findChild<QPushButton*>(QStringLiteral("OK")), &QPushButton::clicked, this,
          &EditGunForm::OnOK);
  connect(findChild<QPushButton*>(QStringLiteral("Cancel")), &QPushButton::clicked, this,
          &EditGunForm::reject);
}

QLineEdit* EditGunForm::Field(const char* member) const {
  return findChild<QLineEdit*>(QString::fromLatin1(member));
}

int EditGunForm::DoModal() {
  ExchangeIn();
  Field("TypeName")->setFocus();
  if (EditPlacementUnset == 0) applyPlacement(this, &EditPlacement);
  EditPlacementUnset = 0;
  return exec();
}

void EditGunForm::reject() { done(GunListView::kCancelled); }

void EditGunForm::done(int result) {
  readPlacement(this, &EditPlacement);
  TemplateDialog::done(result);
}

void EditGunForm::ExchangeIn() {
  for (const Exchange& step : kExchange) {
    if (step.check) {
      findChild<QCheckBox*>(QString::fromLatin1(step.name))->setChecked(data_->*step.check != 0);
    } else if (step.text) {
      static_cast<FormField*>(Field(step.name))->Fill(QByteArray(data_->*step.text));
    } else {
      char text[64];
      numFormatGeneral(text, sizeof text, data_->*step.number, kShownDigits);
      static_cast<FormField*>(Field(step.name))->Fill(QByteArray(text));
    }
  }
}

int EditGunForm::ExchangeOut() {
  for (const Exchange& step : kExchange) {
    if (step.check) {
      data_->*step.check = findChild<QCheckBox*>(QString::fromLatin1(step.name))->isChecked();
      continue;
    }
    auto* field = static_cast<FormField*>(Field(step.name));
    const QByteArray bytes = field->Bytes();
    char message[256] = "";
    if (step.text) {
      if (field->Fits()) {
        strCopyN(data_->*step.text, bytes.constData(), EditGunDialog::kTextSize);
        continue;
      }
      std::snprintf(message, sizeof message,
                    "%s: enter no more than %d bytes (letters beyond A-Z take two or more).",
                    step.label, step.limit);
    } else {
      double value = 0;
      if (numParseDoubleWhole(bytes.constData(), &value) && std::fabs(value) <= FLT_MAX) {
        data_->*step.number = static_cast<float>(value);
        continue;
      }
      std::snprintf(message, sizeof message, "%s: please enter a number.", step.label);
    }
    showMessageBox(this, "Tessarine", message);
    field->setFocus();
    field->selectAll();
    return 0;
  }
  return 1;
}

void EditGunForm::OnOK() {
  if (ExchangeOut()) done(kAccepted);
}
