#include "ui/receive_options_dialog.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include "rx/postamble.h"
#include "ui/log_dialogs.h"
#include "ui/page_parts.h"
#include "ui/relay_dialogs.h"

namespace wavetrace::ui {
namespace {

using app::RxOptionsPage;
using app::RxSwitch;

// The delay in milliseconds: the arrows step in hundreds, typed text is
// the value.
class DelaySpinBox : public QSpinBox {
 public:
  explicit DelaySpinBox(QWidget* parent) : QSpinBox(parent) {
    setRange(0, static_cast<int>(app::kMaxRxDelay));
    lineEdit()->setMaxLength(app::kDelayFieldChars);
  }
  void stepBy(int steps) override {
    setValue(static_cast<int>(app::SteppedDelay(static_cast<uint32_t>(value()), steps)));
  }
  using QAbstractSpinBox::lineEdit;
};

}  // namespace

ReceiveOptionsDialog::ReceiveOptionsDialog(core::AppState& state, RxOptionsPage startPage, QWidget* parent)
    : QDialog(parent), state_(state), sheet_(state) {
  setWindowTitle(QStringLiteral("Rx Options"));
  auto* layout = new QVBoxLayout(this);
  tabs_ = new QTabWidget(this);
  tabs_->setUsesScrollButtons(true);
  logging_ = new LoggingPage(state, this);
  relay_ = new RelayPage(state, this);
  QWidget* pages[] = {BuildFiltersPage(), BuildReplacePage(), logging_, relay_, BuildAdvancedPage()};
  for (int i = 0; i < app::kRxOptionsPageCount; ++i) {
    auto page = static_cast<RxOptionsPage>(i);
    tabs_->addTab(pages[i], ToQString(app::RxOptionsPageTitle(page)));
    // Filled: from here on the page's notifications store.
    sheet_.SetPageReady(page);
  }
  tabs_->setCurrentIndex(static_cast<int>(startPage));
  layout->addWidget(tabs_, 1);
  auto* buttons =
      new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this,
          &ReceiveOptionsDialog::Apply);
  layout->addWidget(buttons);
}

QWidget* ReceiveOptionsDialog::BuildFiltersPage() {
  const core::DataSettings& settings = state_.Data;
  auto* page = new QWidget(this);
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(Caption(QStringLiteral("Append the following character(s) to received data:"), page));
  postamble_ = new QLineEdit(ToQString(settings.wcszPostambleKeysRX), page);
  postamble_->setObjectName(QStringLiteral("rxPostamble"));
  postamble_->setMaxLength(static_cast<int>(rx::kPostambleFieldChars));
  layout->addWidget(postamble_);
  auto* keyRow = new QHBoxLayout;
  keys_ = new QComboBox(page);
  for (const rx::PostambleKey& key : rx::PostambleKeys()) keys_->addItem(ToQString(key.Name));
  addKey_ = new QPushButton(QStringLiteral("Add..."), page);
  clearPostamble_ = new QPushButton(QStringLiteral("Clear"), page);
  keyRow->addWidget(keys_, 1);
  keyRow->addWidget(addKey_);
  keyRow->addWidget(clearPostamble_);
  layout->addLayout(keyRow);
  connect(addKey_, &QPushButton::clicked, this, [this] {
    std::u16string field = postamble_->text().toStdU16String();
    if (!rx::AddPostambleKey(field, static_cast<size_t>(keys_->currentIndex()))) return;
    postamble_->setText(ToQString(field));
    postamble_->setFocus(Qt::OtherFocusReason);
    postamble_->selectAll();
  });
  connect(clearPostamble_, &QPushButton::clicked, postamble_, &QLineEdit::clear);

  const std::pair<RxSwitch, const char*> boxes[] = {
      {RxSwitch::kBinBrackets, "Remove \"[]\" brackets from converted binary values"},
      {RxSwitch::kNonChars, "Only convert non-printable characters in binary view"},
      {RxSwitch::kFilterNP, "Filter non-printable characters"}};
  for (auto [which, caption] : boxes) {
    auto* box = new QCheckBox(page);
    box->setChecked(app::RxSwitchTicked(settings, which));
    auto* row = new QHBoxLayout;
    row->addWidget(box, 0, Qt::AlignTop);
    row->addWidget(new CheckBoxCaption(QString::fromLatin1(caption), box, page), 1);
    layout->addLayout(row);
    connect(box, &QCheckBox::clicked, this,
            [this, which](bool ticked) { sheet_.StoreSwitch(which, ticked); });
    switches_[static_cast<size_t>(which)] = box;
  }
  layout->addStretch(1);
  return page;
}

QWidget* ReceiveOptionsDialog::BuildReplacePage() {
  auto* page = new QWidget(this);
  auto* layout = new QVBoxLayout(page);
  auto* group = new QGroupBox(QStringLiteral("Search and Replace"), page);
  auto* grid = new QGridLayout(group);
  ruleNumber_ = new QSpinBox(group);
  ruleNumber_->setObjectName(QStringLiteral("ruleNumber"));
  ruleCounter_ = new QLabel(QStringLiteral(" 0 / 0"), group);
  grid->addWidget(ruleNumber_, 0, 0);
  grid->addWidget(ruleCounter_, 0, 1);
  // Captions above the fields: side by side they do not fit a 240 pixel width.
  grid->addWidget(Caption(QStringLiteral("Search for:"), group), 1, 0, 1, 2);
  search_ = new QLineEdit(group);
  search_->setObjectName(QStringLiteral("searchFor"));
  grid->addWidget(search_, 2, 0, 1, 2);
  grid->addWidget(Caption(QStringLiteral("Replace with:"), group), 3, 0, 1, 2);
  replace_ = new QLineEdit(group);
  replace_->setObjectName(QStringLiteral("replaceWith"));
  grid->addWidget(replace_, 4, 0, 1, 2);
  for (QLineEdit* field : {search_, replace_}) field->setMaxLength(static_cast<int>(rx::kRuleFieldChars));
  modes_ = new QButtonGroup(group);
  const char* modeCaptions[] = {"Replace all", "Replace first occurring", "Replace last occurring"};
  for (int i = 0; i < 3; ++i) {
    auto* radio = new QRadioButton(QString::fromLatin1(modeCaptions[i]), group);
    modes_->addButton(radio, i);
    grid->addWidget(radio, 5 + i, 0, 1, 2);
  }
  auto* buttonRow = new QHBoxLayout;
  addRule_ = new QPushButton(QStringLiteral("Add"), group);
  removeRule_ = new QPushButton(QStringLiteral("Remove"), group);
  insertRule_ = new QPushButton(QStringLiteral("Insert"), group);
  for (QPushButton* button : {addRule_, removeRule_, insertRule_}) buttonRow->addWidget(button);
  grid->addLayout(buttonRow, 8, 0, 1, 2);
  layout->addWidget(group);
  auto* disable = new QCheckBox(QStringLiteral("Disable Search and Replace"), page);
  disable->setChecked(app::RxSwitchTicked(state_.Data, RxSwitch::kDisableSnR));
  switches_[static_cast<size_t>(RxSwitch::kDisableSnR)] = disable;
  layout->addWidget(disable);
  layout->addStretch(1);
  ShowRule();

  connect(disable, &QCheckBox::clicked, this,
          [this](bool ticked) { sheet_.StoreSwitch(RxSwitch::kDisableSnR, ticked); });
  connect(modes_, &QButtonGroup::idClicked, this, [this] { sheet_.StoreRuleMode(RuleOnShow()); });
  connect(ruleNumber_, &QSpinBox::valueChanged, this, [this](int index) {
    sheet_.SelectRule(RuleOnShow(), index);
    ShowRule();
  });
  connect(addRule_, &QPushButton::clicked, this, [this] {
    sheet_.AddRule(RuleOnShow());
    ShowRule();
  });
  connect(removeRule_, &QPushButton::clicked, this, [this] {
    sheet_.RemoveRule();
    ShowRule();
  });
  connect(insertRule_, &QPushButton::clicked, this, [this] {
    sheet_.InsertRule();
    ShowRule();
  });
  return page;
}

QWidget* ReceiveOptionsDialog::BuildAdvancedPage() {
  auto* page = new QWidget(this);
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(Caption(QStringLiteral("Delay Rx processing by:"), page));
  auto* row = new QHBoxLayout;
  auto* delay = new DelaySpinBox(page);
  delay_ = delay;
  delay_->setObjectName(QStringLiteral("rxDelay"));
  delay_->setValue(static_cast<int>(std::min(state_.Data.RxDelayReadThread, app::kMaxRxDelay)));
  row->addWidget(delay_);
  row->addWidget(Caption(QStringLiteral("ms"), page), 1);
  layout->addLayout(row);
  layout->addStretch(1);
  auto edited = [this](const QString& text) {
    if (auto rewrite = sheet_.EditDelayField(text.toStdU16String())) {
      QSignalBlocker blocker(delay_);
      delay_->setValue(QString::fromStdU16String(*rewrite).toInt());
    }
  };
  // Typed text comes as text (also when empty), the arrows as values.
  connect(delay->lineEdit(), &QLineEdit::textEdited, this, edited);
  connect(delay_, &QSpinBox::valueChanged, this, [edited](int value) { edited(QString::number(value)); });
  return page;
}

rx::RuleFields ReceiveOptionsDialog::RuleOnShow() const {
  rx::RuleFields fields;
  fields.SearchFor = search_->text().toStdU16String();
  fields.ReplaceWith = replace_->text().toStdU16String();
  const int mode = modes_->checkedId();
  fields.Rall = mode == 0 ? 1 : 0;
  fields.Rfo = mode == 1 ? 1 : 0;
  fields.Rlo = mode == 2 ? 1 : 0;
  return fields;
}

void ReceiveOptionsDialog::ShowRule() {
  const core::DataSettings& settings = state_.Data;
  const rx::RuleFields fields = rx::RuleFieldsOf(settings, settings.SnRCurrentRule);
  {
    QSignalBlocker blocker(ruleNumber_);
    ruleNumber_->setRange(1, std::max(1, std::min(settings.SnR_count, core::DataSettings::kMaxSnRRules)));
    ruleNumber_->setValue(settings.SnRCurrentRule);
  }
  ruleCounter_->setText(ToQString(rx::RuleCaption(settings)));
  search_->setText(ToQString(fields.SearchFor));
  replace_->setText(ToQString(fields.ReplaceWith));
  const int mode = fields.Rlo == 1 ? 2 : fields.Rfo == 1 ? 1 : fields.Rall == 1 ? 0 : -1;
  if (QAbstractButton* radio = modes_->button(mode)) {
    radio->setChecked(true);
  } else if (QAbstractButton* checked = modes_->checkedButton()) {
    modes_->setExclusive(false);
    checked->setChecked(false);
    modes_->setExclusive(true);
  }
  addRule_->setEnabled(rx::CanAddRule(settings));
  insertRule_->setEnabled(rx::CanAddRule(settings));
}

void ReceiveOptionsDialog::Apply() {
  logging_->Apply();
  sheet_.Apply(postamble_->text().toStdU16String(), RuleOnShow());
  // The field shows what was kept, the list what apply compacted.
  postamble_->setText(ToQString(state_.Data.wcszPostambleKeysRX));
  ShowRule();
}

void ReceiveOptionsDialog::done(int result) {
  if (result == QDialog::Accepted) {
    Apply();
  } else {
    relay_->Revert();
    sheet_.Cancel();
  }
  QDialog::done(result);
}

}  // namespace wavetrace::ui
