#include <corlith/ui/DialogTemplate.h>

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/combobox.h>
#include <wx/font.h>
#include <wx/listbox.h>
#include <wx/statbmp.h>
#include <wx/statbox.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/toplevel.h>

namespace corlith::ui {
namespace {

// Label alignment bits of the original static control.
constexpr std::uint32_t kStaticCenter = 0x1;
constexpr std::uint32_t kStaticRight = 0x2;

wxWindow* MakeItem(wxWindow* parent, const DialogItem& item, const wxRect& rect) {
  const wxString text = wxString::FromUTF8(item.text);
  const wxPoint at = rect.GetPosition();
  const wxSize size = rect.GetSize();
  switch (item.kind) {
    case DialogItemKind::Button:
      return new wxButton(parent, item.id, text, at, size);
    case DialogItemKind::DefaultButton: {
      auto* button = new wxButton(parent, item.id, text, at, size);
      button->SetDefault();
      return button;
    }
    case DialogItemKind::Label: {
      long style = wxST_NO_AUTORESIZE;
      const std::uint32_t align = item.style & 0x3;
      if (align == kStaticCenter) style |= wxALIGN_CENTRE_HORIZONTAL;
      if (align == kStaticRight) style |= wxALIGN_RIGHT;
      return new wxStaticText(parent, item.id, text, at, size, style);
    }
    case DialogItemKind::Edit:
      return new wxTextCtrl(parent, item.id, text, at, size);
    case DialogItemKind::MultiLineEdit:
      return new wxTextCtrl(parent, item.id, text, at, size, wxTE_MULTILINE);
    case DialogItemKind::CheckBox:
      return new wxCheckBox(parent, item.id, text, at, size);
    case DialogItemKind::ComboBox:
      return new wxComboBox(parent, item.id, text, at, size, 0, nullptr, wxCB_DROPDOWN | wxCB_READONLY);
    case DialogItemKind::ListBox:
      return new wxListBox(parent, item.id, at, size);
    case DialogItemKind::GroupBox:
      return new wxStaticBox(parent, item.id, text, at, size);
    case DialogItemKind::Picture:
      return new wxStaticBitmap(parent, item.id, wxNullBitmap, at, size);
    case DialogItemKind::Custom:
      return nullptr;
  }
  return nullptr;
}

}  // namespace

wxRect DialogItemRect(const wxWindow& dialog, const DialogItem& item) {
  const wxPoint at = dialog.ConvertDialogToPixels(wxPoint(item.x, item.y));
  const wxSize size = dialog.ConvertDialogToPixels(wxSize(item.cx, item.cy));
  return {at, size};
}

void BuildDialogItems(wxWindow& dialog, const DialogTemplate& tpl, const DialogItemFactory& factory) {
  // The font first: dialog units are units of the dialog's font.
  dialog.SetFont(wxFont(wxFontInfo(tpl.fontPoints).FaceName(wxString::FromUTF8(tpl.fontFace))));
  dialog.SetClientSize(dialog.ConvertDialogToPixels(wxSize(tpl.cx, tpl.cy)));
  for (const DialogItem& item : tpl.items) {
    const wxRect rect = DialogItemRect(dialog, item);
    wxWindow* made = factory ? factory(&dialog, item, rect) : nullptr;
    if (made == nullptr) made = MakeItem(&dialog, item, rect);
    if (made != nullptr && made->GetId() != item.id) made->SetId(item.id);
  }
}

}  // namespace corlith::ui
