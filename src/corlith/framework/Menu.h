// Menus and command UI: the framework's CMenu and CCmdUI over a small item-list interface
// (corlith::IMenu). Headless, a CMenu is an in-memory list of items; the UI library adapts
// a real menu to IMenu. CMenu resolves positions and command ids and validates every
// request, so an IMenu implementation only stores items. Only plain text items and
// separators exist: pop-up, bitmap and owner-drawn items are refused.
#pragma once

#include <corlith/framework/String.h>
#include <corlith/framework/Types.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Menu flags, with the original's values. MF_BYCOMMAND, MF_STRING, MF_ENABLED and
// MF_UNCHECKED are 0: the absence of their alternatives.
inline constexpr UINT MF_BYCOMMAND = 0x0;
inline constexpr UINT MF_BYPOSITION = 0x400;
inline constexpr UINT MF_STRING = 0x0;
inline constexpr UINT MF_SEPARATOR = 0x800;
inline constexpr UINT MF_ENABLED = 0x0;
inline constexpr UINT MF_GRAYED = 0x1;
inline constexpr UINT MF_DISABLED = 0x2;
inline constexpr UINT MF_UNCHECKED = 0x0;
inline constexpr UINT MF_CHECKED = 0x8;
// Item kinds the original offers and this menu refuses (InsertMenu and friends give FALSE).
inline constexpr UINT MF_BITMAP = 0x4;
inline constexpr UINT MF_POPUP = 0x10;
inline constexpr UINT MF_OWNERDRAW = 0x100;

namespace corlith {

/// One menu item as an IMenu stores it.
struct MenuItem {
  UINT id = 0;       ///< command id; 0 for a separator
  std::string text;  ///< as the host wrote it, "&" mnemonic marks included; "" for a separator
  UINT state = 0;    ///< MF_GRAYED, MF_DISABLED, MF_CHECKED and MF_SEPARATOR bits
  friend bool operator==(const MenuItem&, const MenuItem&) = default;
};

/// The item list behind a CMenu. CMenu checks every position before it calls.
class IMenu {
 public:
  virtual ~IMenu() = default;
  virtual int GetItemCount() const = 0;
  /// The item at `position` (0 <= position < GetItemCount()).
  virtual MenuItem GetItem(int position) const = 0;
  /// Inserts before `position` (0 <= position <= GetItemCount()).
  virtual void InsertItem(int position, const MenuItem& item) = 0;
  /// Replaces the item at `position`.
  virtual void SetItem(int position, const MenuItem& item) = 0;
  /// Removes the item at `position`.
  virtual void DeleteItem(int position) = 0;
};

/// The headless menu: the items in memory.
class MemoryMenu final : public IMenu {
 public:
  int GetItemCount() const override { return static_cast<int>(m_items.size()); }
  MenuItem GetItem(int position) const override { return m_items[static_cast<std::size_t>(position)]; }
  void InsertItem(int position, const MenuItem& item) override;
  void SetItem(int position, const MenuItem& item) override {
    m_items[static_cast<std::size_t>(position)] = item;
  }
  void DeleteItem(int position) override;

 private:
  std::vector<MenuItem> m_items;
};

/// The text a menu shows for `text`: each "&" that marks a mnemonic is dropped, "&&"
/// shows as one "&", and a lone "&" at the very end is dropped.
std::string MenuDisplayText(std::string_view text);
/// The mnemonic character of `text`: the character after the first "&" that is not part
/// of "&&"; '\0' when there is none. (Menus match it case-insensitively.)
char MenuMnemonic(std::string_view text);
/// `text` with every "&" doubled, so that it shows literally and marks no mnemonic.
std::string EscapeMenuText(std::string_view text);

}  // namespace corlith

/// A menu. Positions are 0-based; MF_BYCOMMAND finds the first item (not a separator)
/// with the command id. Functions that find no item give FALSE, 0 or 0xFFFFFFFF as the
/// original does and change nothing.
class CMenu {
 public:
  /// An empty in-memory menu.
  CMenu();
  /// A menu over `menu` (an adapter of a real menu); null gives an empty in-memory menu.
  explicit CMenu(std::unique_ptr<corlith::IMenu> menu);
  CMenu(CMenu&&) noexcept = default;
  CMenu& operator=(CMenu&&) noexcept = default;
  CMenu(const CMenu&) = delete;
  CMenu& operator=(const CMenu&) = delete;
  ~CMenu() = default;

  int GetMenuItemCount() const;
  /// The command id of the item at nPos: 0 for a separator, 0xFFFFFFFF when there is no item.
  UINT GetMenuItemID(int nPos) const;
  /// rString := the item's text, "&" marks included; returns its length. No item: rString
  /// is emptied and 0 is returned.
  int GetMenuString(UINT nIDItem, CString& rString, UINT nFlags) const;
  /// The item's MF_GRAYED, MF_DISABLED, MF_CHECKED and MF_SEPARATOR bits; 0xFFFFFFFF when
  /// there is no item.
  UINT GetMenuState(UINT nID, UINT nFlags) const;

  /// Inserts a new item before the one nPosition names. By position, a position at or past
  /// the end (0xFFFFFFFF included) appends, as the original does; by command, an unknown
  /// id gives FALSE. nFlags may add MF_GRAYED, MF_DISABLED, MF_CHECKED, or MF_SEPARATOR (then
  /// id and text are ignored); MF_POPUP, MF_BITMAP and MF_OWNERDRAW give FALSE. A null text
  /// is the empty text.
  BOOL InsertMenu(UINT nPosition, UINT nFlags, UINT_PTR nIDNewItem = 0, LPCTSTR lpszNewItem = nullptr);
  /// Appends an item; flags and text as InsertMenu.
  BOOL AppendMenu(UINT nFlags, UINT_PTR nIDNewItem = 0, LPCTSTR lpszNewItem = nullptr);
  /// Replaces the item nPosition names with a new one; flags and text as InsertMenu.
  BOOL ModifyMenu(UINT nPosition, UINT nFlags, UINT_PTR nIDNewItem = 0, LPCTSTR lpszNewItem = nullptr);
  /// Removes the item nPosition names; FALSE when there is none.
  BOOL DeleteMenu(UINT nPosition, UINT nFlags);

  /// nEnable: MF_BYCOMMAND or MF_BYPOSITION with MF_ENABLED, MF_GRAYED and/or MF_DISABLED.
  /// Returns the item's previous MF_GRAYED and MF_DISABLED bits, or 0xFFFFFFFF when there
  /// is no item.
  UINT EnableMenuItem(UINT nIDEnableItem, UINT nEnable);
  /// nCheck: MF_BYCOMMAND or MF_BYPOSITION with MF_CHECKED or MF_UNCHECKED. Returns the
  /// previous MF_CHECKED bit, or 0xFFFFFFFF when there is no item.
  UINT CheckMenuItem(UINT nIDCheckItem, UINT nCheck);

  /// The item list behind this menu.
  corlith::IMenu& GetItems() { return *m_menu; }
  const corlith::IMenu& GetItems() const { return *m_menu; }

 private:
  std::optional<int> Find(UINT nID, UINT nFlags) const;
  static std::optional<corlith::MenuItem> MakeItem(UINT nFlags, UINT_PTR nID, LPCTSTR lpszText);

  std::unique_ptr<corlith::IMenu> m_menu;
};

/// The command UI of one menu item while the framework asks handlers for its state.
/// Enable, SetCheck and SetText change the item at m_nIndex of m_pMenu; without a menu
/// (or with an index that names no item) they change nothing but m_bEnableChanged.
class CCmdUI {
 public:
  UINT m_nID = 0;            ///< the item's command id
  UINT m_nIndex = 0;         ///< the item's position in m_pMenu
  CMenu* m_pMenu = nullptr;  ///< the menu holding the item (not owned)
  UINT m_nIndexMax = 0;      ///< the menu's item count; a handler that inserts or deletes items updates it
  BOOL m_bEnableChanged =
      FALSE;  ///< set by Enable (or by a handler): the framework leaves the item's state alone

  CCmdUI() = default;
  CCmdUI(const CCmdUI&) = default;
  CCmdUI& operator=(const CCmdUI&) = default;
  virtual ~CCmdUI() = default;

  /// Enables the item, or disables and grays it; sets m_bEnableChanged.
  virtual void Enable(BOOL bOn = TRUE);
  /// Checks the item (any non-zero nCheck) or clears its check mark.
  virtual void SetCheck(int nCheck = 1);
  /// Replaces the item's text, keeping its id and state; a null text is the empty text.
  virtual void SetText(LPCTSTR lpszText);
};

namespace corlith {

/// The framework's update pass over a menu about to open: for each item that is not a
/// separator, a CCmdUI is filled (m_bEnableChanged FALSE) and `update` is called; it
/// returns TRUE when a handler for the command exists. When `disableIfNoHandler` is set
/// and the call left m_bEnableChanged FALSE, the item is enabled when `update` returned
/// TRUE and disabled (grayed) otherwise. A handler may insert or delete items: it moves m_nIndex to the last
/// item it handled and stores the new count in m_nIndexMax, and the pass goes on after it; a handler that
/// deletes items without saying so is followed by the item after those left.
void UpdateMenuCommandUI(CMenu& menu, const std::function<BOOL(CCmdUI&)>& update, BOOL disableIfNoHandler);

}  // namespace corlith
