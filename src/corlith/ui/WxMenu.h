// WxMenu: a real wx menu as the framework's menu item list, so that CMenu, CCmdUI and the
// framework's update pass work on the menus a host shows. Texts keep the framework's
// "&" mnemonic marks (wx reads them the same way); MF_GRAYED and MF_DISABLED both show as
// a disabled item, and an item once checked becomes a check item.
#pragma once

#include <corlith/framework/Menu.h>

#include <string>
#include <unordered_map>

#include <wx/string.h>

class wxMenu;
class wxMenuItem;

namespace corlith::ui {

/// The item list of a wxMenu, which must outlive the adapter (the host or its menu bar
/// owns it). Items the host added itself are read as wx shows them; an item with a
/// submenu reads as a plain item, and deleting it deletes the submenu.
class WxMenu final : public IMenu {
 public:
  explicit WxMenu(wxMenu* menu) : m_menu(menu) {}

  int GetItemCount() const override;
  /// Reads back exactly what was written through this adapter (an empty text, MF_DISABLED
  /// without MF_GRAYED) while the wx item still shows it.
  MenuItem GetItem(int position) const override;
  void InsertItem(int position, const MenuItem& item) override;
  /// Changes the item in place, or replaces it when its kind must change (separator,
  /// check item) or its id changes.
  void SetItem(int position, const MenuItem& item) override;
  void DeleteItem(int position) override;

  wxMenu* GetWxMenu() const { return m_menu; }

 private:
  // What this adapter wrote into an item, beside what wx can hold.
  struct Written {
    wxString label;         // the label given to wx
    std::string text;       // the text as the host wrote it
    UINT disabledBits = 0;  // MF_GRAYED and MF_DISABLED as written
  };

  wxMenuItem* Make(int position, const MenuItem& item, bool checkable);
  void Apply(wxMenuItem* wxItem, const MenuItem& item);

  wxMenu* m_menu;
  std::unordered_map<const wxMenuItem*, Written> m_written;
};

}  // namespace corlith::ui
