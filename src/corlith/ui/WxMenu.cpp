#include <corlith/ui/WxMenu.h>

#include <wx/menu.h>

namespace corlith::ui {
namespace {

constexpr UINT kDisabledBits = MF_GRAYED | MF_DISABLED;

// wx refuses an empty label on an item that is not a separator (and puts a stock label
// on stock ids): an empty text is shown as one space and read back as empty.
wxString LabelOf(const std::string& text) { return text.empty() ? wxString(" ") : wxString::FromUTF8(text); }

}  // namespace

int WxMenu::GetItemCount() const { return static_cast<int>(m_menu->GetMenuItemCount()); }

MenuItem WxMenu::GetItem(int position) const {
  const wxMenuItem* wxItem = m_menu->FindItemByPosition(static_cast<std::size_t>(position));
  if (wxItem->IsSeparator()) return {0, "", MF_SEPARATOR};
  MenuItem item;
  item.id = static_cast<UINT>(wxItem->GetId());
  const auto written = m_written.find(wxItem);
  const bool ours = written != m_written.end() && written->second.label == wxItem->GetItemLabel();
  item.text = ours ? written->second.text : std::string(wxItem->GetItemLabel().utf8_str().data());
  if (!wxItem->IsEnabled()) {
    const UINT bits = written != m_written.end() ? written->second.disabledBits : 0;
    item.state |= bits != 0 ? bits : MF_GRAYED;
  }
  if (wxItem->IsCheckable() && wxItem->IsChecked()) item.state |= MF_CHECKED;
  return item;
}

wxMenuItem* WxMenu::Make(int position, const MenuItem& item, bool checkable) {
  const auto pos = static_cast<std::size_t>(position);
  if ((item.state & MF_SEPARATOR) != 0) return m_menu->InsertSeparator(pos);
  wxMenuItem* wxItem = m_menu->Insert(pos, static_cast<int>(item.id), LabelOf(item.text), wxEmptyString,
                                      checkable ? wxITEM_CHECK : wxITEM_NORMAL);
  Apply(wxItem, item);
  return wxItem;
}

void WxMenu::Apply(wxMenuItem* wxItem, const MenuItem& item) {
  const wxString label = LabelOf(item.text);
  if (wxItem->GetItemLabel() != label) wxItem->SetItemLabel(label);
  wxItem->Enable((item.state & kDisabledBits) == 0);
  if (wxItem->IsCheckable()) wxItem->Check((item.state & MF_CHECKED) != 0);
  m_written[wxItem] = Written{label, item.text, item.state & kDisabledBits};
}

void WxMenu::InsertItem(int position, const MenuItem& item) {
  Make(position, item, (item.state & MF_CHECKED) != 0);
}

void WxMenu::SetItem(int position, const MenuItem& item) {
  wxMenuItem* wxItem = m_menu->FindItemByPosition(static_cast<std::size_t>(position));
  const bool separator = (item.state & MF_SEPARATOR) != 0;
  const bool checkable = wxItem->IsCheckable() || (item.state & MF_CHECKED) != 0;
  const bool sameKind = separator == wxItem->IsSeparator() && checkable == wxItem->IsCheckable();
  if (sameKind && (separator || wxItem->GetId() == static_cast<int>(item.id))) {
    if (!separator) Apply(wxItem, item);
    return;
  }
  DeleteItem(position);
  Make(position, item, checkable);
}

void WxMenu::DeleteItem(int position) {
  wxMenuItem* wxItem = m_menu->FindItemByPosition(static_cast<std::size_t>(position));
  m_written.erase(wxItem);
  m_menu->Destroy(wxItem);
}

}  // namespace corlith::ui
