// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/sites/ConnectDialog.h"

#include <algorithm>
#include <vector>

#include "hosts/qxbrowse/sites/Protection.h"
#include "hosts/qxbrowse/sites/SiteAddress.h"
#include "hosts/qxbrowse/sites/SiteMessages.h"
#include "hosts/qxbrowse/ui/Dialog.h"
#include "hosts/qxbrowse/ui/Texts.h"
#include "hosts/qxbrowse/ui/Utf8.h"
#include "hosts/shared/Address.h"

namespace browse {
namespace {

using namespace connect_dialog;

// What a paste brings along at either end.
std::wstring trimmed(const std::wstring& text) {
  constexpr const wchar_t* kAround = L" \t\u00A0<>\"";
  const std::size_t begin = text.find_first_not_of(kAround);
  if (begin == std::wstring::npos) return {};
  return text.substr(begin, text.find_last_not_of(kAround) - begin + 1);
}

constexpr short kFieldHeight = 14;

// A field of one line for each text of a site.
struct Field {
  WORD id;
  std::string Site::*text;
};
constexpr Field kFields[] = {{kName, &Site::name},
                             {kHost, &Site::host},
                             {kUser, &Site::user},
                             {kLocalFolder, &Site::localFolder},
                             {kRemoteFolder, &Site::remoteFolder},
                             {kPin, &Site::pin}};

class ConnectDialog : public Dialog {
 public:
  explicit ConnectDialog(const SiteFile& file) : Dialog(Text::siteTitle, 340, 255), m_file(file) {
    addSites();
    addFields();
    addButtons();
  }
  ~ConnectDialog() override { wipe(m_chosen.password); }

  void readSites(HWND owner) {
    m_sites.clear();
    withSites(owner, m_file, [this] { m_sites = m_file.sites(); });
  }

  [[nodiscard]] const Destination& chosen() const { return m_chosen; }

 private:
  void addSites() {
    addLabel(Text::siteList, {7, 7, 110, 9});
    addList(kSites, {7, 17, 110, 195});
    addButton(kNew, Text::siteNew, {7, 216, 34, kFieldHeight});
    addButton(kSave, Text::siteSave, {45, 216, 34, kFieldHeight});
    addButton(kDelete, Text::siteDelete, {83, 216, 34, kFieldHeight});
  }

  void addFields() {
    addLabelled(Text::siteAddress, kAddress, {127, 7, 206, kFieldHeight});
    addLabelled(Text::siteName, kName, {127, 35, 206, kFieldHeight});
    addLabelled(Text::siteHost, kHost, {127, 63, 156, kFieldHeight});
    addLabelled(Text::sitePort, kPort, {288, 63, 45, kFieldHeight}, ES_NUMBER);
    addLabelled(Text::siteUser, kUser, {127, 91, 100, kFieldHeight});
    addLabelled(Text::sitePassword, kPassword, {233, 91, 100, kFieldHeight}, ES_PASSWORD);
    addButton(kKeepPassword, Text::siteKeepPassword, {127, 119, 206, 10}, BS_AUTOCHECKBOX);
    addLabel(Text::siteEncryption, {127, 133, 206, 9});
    addChoice(kEncryption, {127, 143, 206, 60});
    addButton(kPassive, Text::sitePassive, {127, 161, 206, 10}, BS_AUTOCHECKBOX);
    addLabelled(Text::siteLocalFolder, kLocalFolder, {127, 175, 100, kFieldHeight});
    addLabelled(Text::siteRemoteFolder, kRemoteFolder, {233, 175, 100, kFieldHeight});
    addLabelled(Text::sitePin, kPin, {127, 203, 206, kFieldHeight});
  }

  void addButtons() {
    addText(kState, {7, 236, 216, 18});
    addButton(kConnect, Text::siteConnect, {229, 236, 50, kFieldHeight}, BS_DEFPUSHBUTTON);
    addButton(kCancel, Text::buttonCancel, {283, 236, 50, kFieldHeight});
  }

  // The label stands above the field.
  void addLabelled(Text label, WORD id, const DialogArea& area, DWORD style = 0) {
    addLabel(label, {area.x, area.y, area.width, 9});
    addField(id, {area.x, static_cast<short>(area.y + 10), area.width, area.height}, ES_AUTOHSCROLL | style);
  }

  WORD begin() override {
    for (const Text name : {Text::siteEncryptionNone, Text::siteEncryptionFtpes, Text::siteEncryptionFtps}) {
      addItem(kEncryption, CB_ADDSTRING, text(name));
    }
    listSites();
    fill(m_sites.empty() ? Destination{} : remembered(m_sites.front()));
    select(m_sites.empty() ? "" : m_sites.front().name);
    return m_sites.empty() ? kAddress : kSites;
  }

  void command(WORD id, WORD notification) override {
    if (isEdit(id, notification)) showChanged(true);
    if (id == kHost && notification == EN_KILLFOCUS) takeHost();
    if (id == kSites && notification == LBN_SELCHANGE) showSelected();
    if (id == kSites && notification == LBN_DBLCLK) connect();
    if (id == kAddress && notification == EN_CHANGE) takeAddress();
    if (notification != BN_CLICKED) return;
    if (id == kNew) startNew();
    if (id == kSave) save();
    if (id == kDelete) forget();
    if (id == kConnect) connect();
    if (id == kCancel) end(0);
  }

  // A password that is not to be kept is no part of the site.
  [[nodiscard]] bool isEdit(WORD id, WORD notification) const {
    const bool isField = id >= kName && id <= kPin;
    const bool isTyped = id != kPassword || isChecked(kKeepPassword);
    const bool isBox = id == kKeepPassword || id == kPassive;
    if (m_isFilling || !isField) return false;
    if (id == kEncryption) return notification == CBN_SELCHANGE;
    return isBox ? notification == BN_CLICKED : notification == EN_CHANGE && isTyped;
  }

  void showChanged(bool isChanged) {
    m_isChanged = isChanged;
    setText(kState, isChanged ? text(Text::siteChanged) : L"");
  }

  void listSites() {
    send(kSites, LB_RESETCONTENT);
    for (const Site& site : m_sites) addItem(kSites, LB_ADDSTRING, fromUtf8(site.name));
  }

  [[nodiscard]] std::size_t indexOf(const std::string& name) const {
    return static_cast<std::size_t>(std::ranges::find(m_sites, name, &Site::name) - m_sites.begin());
  }

  void select(const std::string& name) {
    const std::size_t index = indexOf(name);
    m_selected = index < m_sites.size() ? name : std::string();
    send(kSites, LB_SETCURSEL, index < m_sites.size() ? index : static_cast<WPARAM>(-1));
  }

  void showSelected() {
    const auto index = static_cast<std::size_t>(send(kSites, LB_GETCURSEL));
    if (index >= m_sites.size() || m_sites[index].name == m_selected) return;
    const std::string name = m_sites[index].name;
    if (!mayLeave()) return select(m_selected);
    select(name);
    const std::size_t now = indexOf(name);
    if (now < m_sites.size()) fill(remembered(m_sites[now]));
  }

  // What has been changed in a site is saved, or goes, before the fields show another. False: it is to be
  // saved and cannot be.
  bool mayLeave() {
    const bool isOpen = m_isChanged && !m_selected.empty();
    return !isOpen || !ask(window(), text(Text::siteAskSave, {fromUtf8(m_selected)})) || save();
  }

  // A password that another user has protected is asked for again.
  static Destination remembered(const Site& site) {
    return {site, site.password.empty() ? "" : unprotect(site.password).value_or("")};
  }

  void fill(Destination destination) {
    const Site& site = destination.site;
    m_isFilling = true;
    for (const Field& field : kFields) setText(field.id, fromUtf8(site.*field.text));
    SetDlgItemInt(window(), kPort, site.port, FALSE);
    setText(kPassword, fromUtf8(destination.password));
    wipe(destination.password);
    check(kKeepPassword, !site.password.empty());
    check(kPassive, site.isPassive);
    send(kEncryption, CB_SETCURSEL, static_cast<WPARAM>(site.encryption));
    m_isFilling = false;
    showChanged(false);
  }

  // What is typed fills the fields as soon as it is an address.
  void takeAddress() {
    auto destination = destinationFrom(toUtf8(trimmed(textOf(kAddress))));
    if (!destination) return;
    select("");
    fill(std::move(*destination));
    showChanged(true);
  }

  // An address in place of the host fills the fields that it tells of, when all of it is there.
  void takeHost() {
    const std::string typed = toUtf8(trimmed(textOf(kHost)));
    auto destination = hosts::isAddress(typed) ? destinationFrom(typed) : std::nullopt;
    if (!destination) return;
    const Site told = destination->site;
    Destination merged = entered();
    merged.site.host = told.host;
    merged.site.port = told.port;
    merged.site.encryption = told.encryption;
    merged.site.pin = told.pin;
    if (typed.find('@') != std::string::npos) {
      merged.site.user = told.user;
      merged.password = std::move(destination->password);
    }
    if (!told.remoteFolder.empty()) merged.site.remoteFolder = told.remoteFolder;
    if (textOf(kName).empty()) merged.site.name = told.name;
    merged.site.password = isChecked(kKeepPassword) ? "kept" : "";  // which is what the box shows
    fill(std::move(merged));
    showChanged(true);
  }

  void startNew() {
    if (!mayLeave()) return;
    clear();
  }

  void clear() {
    setText(kAddress, L"");
    select("");
    fill({});
    focus(kName);
  }

  [[nodiscard]] Destination entered() const {
    Destination destination;
    Site& site = destination.site;
    for (const Field& field : kFields) site.*field.text = toUtf8(textOf(field.id));
    site.host = toUtf8(trimmed(textOf(kHost)));
    site.pin = pinFrom(site.pin).value_or(site.pin);
    site.port = GetDlgItemInt(window(), kPort, nullptr, FALSE);
    site.encryption = static_cast<Encryption>(send(kEncryption, CB_GETCURSEL));
    site.isPassive = isChecked(kPassive);
    if (site.name.empty()) site.name = site.host;
    destination.password = toUtf8(textOf(kPassword));
    return destination;
  }

  [[nodiscard]] bool isRight(const Site& site) const {
    const auto fault = faultOf(site);
    if (fault) tell(window(), text(*fault));
    return !fault;
  }

  bool save() {
    takeHost();
    Destination destination = entered();
    Site& site = destination.site;
    bool isSaved = false;
    const bool isOther = site.name != m_selected && indexOf(site.name) < m_sites.size();
    if (isRight(site) && (!isOther || ask(window(), text(Text::siteAskReplace, {fromUtf8(site.name)})))) {
      isSaved = withSites(window(), m_file, [&] {
        if (isChecked(kKeepPassword)) site.password = protect(destination.password);
        m_file.put(site, m_selected);
      });
      readSites(window());
      listSites();
      select(site.name);
      if (isSaved) showChanged(false);
    }
    wipe(destination.password);
    return isSaved;
  }

  void forget() {
    if (m_selected.empty() || !ask(window(), text(Text::siteAskDelete, {fromUtf8(m_selected)}))) return;
    withSites(window(), m_file, [&] { m_file.remove(m_selected); });
    readSites(window());
    listSites();
    clear();
  }

  void connect() {
    takeHost();
    m_chosen = entered();
    const std::wstring address = textOf(kAddress);
    if (m_chosen.site.host.empty() && !address.empty()) {
      tell(window(), text(Text::wrongAddress, {address}));
    } else if (isRight(m_chosen.site)) {
      end(1);
    }
  }

  const SiteFile& m_file;
  std::vector<Site> m_sites;
  std::string m_selected;  // the name of the site in the list; "": none of them
  Destination m_chosen;
  bool m_isFilling = false;  // the fields change, but not by the user
  bool m_isChanged = false;  // the fields are not what is saved
};

}  // namespace

std::optional<Destination> askWhereTo(HWND owner, const SiteFile& file) {
  ConnectDialog dialog(file);
  dialog.readSites(owner);
  return dialog.show(owner) != 0 ? std::optional(dialog.chosen()) : std::nullopt;
}

}  // namespace browse
