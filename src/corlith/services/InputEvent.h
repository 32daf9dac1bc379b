// Input events: the interactive tools of a drawing view. A host derives one class per
// tool from CIE__Base; CInputEventManager (one per view) holds the current tool, forwards
// the view's mouse and keyboard messages to it and keeps a stack of suspended tools that
// resume when the one started over them ends. CIE__Base also switches the exclusive-or
// drawing mode of the OpenGL context current on the calling thread.
#pragma once

#include <corlith/framework/Geometry.h>
#include <corlith/framework/String.h>
#include <corlith/framework/Types.h>
#include <corlith/values/ExPtrArray.h>

#include <cstddef>
#include <deque>
#include <memory>

class CInputEventManager;

/// The base of every tool. Tools live on the heap: a manager that is given one takes a
/// share in it (see CInputEventManager), and the tool is destroyed when the last manager
/// holding it lets go.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the interface's name, double underscore included
class CIE__Base : public std::enable_shared_from_this<CIE__Base> {
 public:
  /// Calls Init.
  CIE__Base();
  /// Copies the manager, the saved logic operation and the draw-previous flag.
  CIE__Base(const CIE__Base& other);
  CIE__Base& operator=(const CIE__Base& other);

  // The virtual operations, in the original's slot order.

  /// Saved logic operation 0, draw-previous flag 1.
  virtual void Init();
  /// Releases the mouse capture (DestroyMouseCapture).
  virtual ~CIE__Base();
  virtual void SetFlag_DrawPrevXOR(int flag);
  /// Nothing here; a tool resets its own state when the view zooms.
  virtual void ResetEventStatus_while_ZoomInOut() {}
  /// 0 here.
  virtual int IsInterruptInputEvent() const { return 0; }
  /// "CIE__Base"; each tool returns its own class name.
  virtual CString GetInputEventName() const;
  /// Nothing here; a tool shows its own cursor.
  virtual void SetCursor() const {}
  virtual void OnLButtonDown(UINT nFlags, CPoint& point);
  virtual void OnRButtonDown(UINT nFlags, CPoint& point);
  virtual void OnMButtonDown(UINT nFlags, CPoint& point);
  virtual void OnMouseMove(UINT nFlags, CPoint& point);
  virtual void OnLButtonUp(UINT nFlags, CPoint& point);
  virtual void OnRButtonUp(UINT nFlags, CPoint& point);
  virtual void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
  virtual void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags);

  /// The manager that runs this tool (not owned).
  void SetInputEventManager(CInputEventManager* manager) { m_pInputEventManager = manager; }
  CInputEventManager* GetInputEventManager() const { return m_pInputEventManager; }
  /// Whether a figure drawn earlier in exclusive-or mode is to be drawn again (erased).
  int GetFlag_DrawPrevXOR() const { return m_nFlag_DrawPrevXOR; }

  /// On the OpenGL context current on this thread: disables the depth test, enables the
  /// colour logic operation, saves the logic-operation mode in force and sets GL_XOR.
  void BeginMode_XOR() const;
  /// Restores the saved logic-operation mode and disables the colour logic operation.
  /// Deliberate: the depth test stays disabled; the view enables it when it needs it.
  void EndMode_XOR() const;
  /// The mode BeginMode_XOR saved (0 before the first call).
  int GetSavedLogicOp() const { return m_nSavedLogicOp; }
  /// Releases the mouse capture if a window of the calling thread holds it (through the
  /// desktop hooks).
  void DestroyMouseCapture();
  /// Empty hooks in the base, kept non-virtual as in the original.
  void SwapBuffers(int) {}
  void ShowDebugMessageWhenDeleted() const {}

 private:
  CInputEventManager* m_pInputEventManager = nullptr;
  mutable int m_nSavedLogicOp = 0;  // written by the const BeginMode_XOR
  int m_nFlag_DrawPrevXOR = 1;
};

/// An owning array of tools: Init, removal through the Delete members and destruction
/// destroy them. Not copyable: a tool has no clone.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the interface's name
class CIE__BaseArray : public CExPtrArray<CIE__Base*, CIE__Base*> {
 public:
  /// Calls Init.
  CIE__BaseArray() { Init(); }
  ~CIE__BaseArray() override { DeleteAll(); }
  CIE__BaseArray(const CIE__BaseArray&) = delete;
  CIE__BaseArray& operator=(const CIE__BaseArray&) = delete;
  void Copy(const CArray<CIE__Base*, CIE__Base*>&) = delete;
  INT_PTR Append(const CArray<CIE__Base*, CIE__Base*>&) = delete;

  /// Destroys every tool and empties the array.
  void Init() { DeleteAll(); }
};

/// The dispatcher of one view. States: idle (no current tool, empty stack), active (a
/// current tool), nested (a current tool and suspended ones).
///
/// Ownership: the manager holds a share in its current and its suspended tools. Copies
/// hold the same tools as their source (as the original's copies held the same
/// pointers), and a tool is destroyed when the last manager holding it lets it go: a
/// manager's Delete members release its own share, so a copy never sees a tool its
/// source destroyed. Deviation: the original's destructor leaked the current tool; here
/// it is released like the suspended ones (hosts still call DeleteAllInputEvent first).
class CInputEventManager {
 public:
  /// Calls Init.
  CInputEventManager();
  CInputEventManager(const CInputEventManager&) = default;
  CInputEventManager& operator=(const CInputEventManager&) = default;

  // The virtual operations, in the original's slot order.

  /// Current tool null and flag 0; the stack is not touched. The current tool's share
  /// is dropped (destroying it unless another manager holds it), where the original
  /// forgot the pointer and leaked the tool: a deliberate deviation.
  virtual void Init();
  virtual ~CInputEventManager();
  /// When the flag is set: the current tool is destroyed, the flag cleared and the tool
  /// suspended last (if any) resumes (PopInputEvent with activate 1).
  virtual void EventEndingProcess();
  // Each handler forwards to the current tool's handler of the same name; nothing
  // happens when there is no current tool. Deliberate asymmetry: after forwarding, a
  // left or middle press, a button release, a key and a character call
  // EventEndingProcess (which ends the tool when the flag is set); a move and a right
  // press never do.
  virtual void OnLButtonDown(UINT nFlags, CPoint& point);
  virtual void OnMouseMove(UINT nFlags, CPoint& point);
  virtual void OnLButtonUp(UINT nFlags, CPoint& point);
  virtual void OnRButtonDown(UINT nFlags, CPoint& point);
  virtual void OnRButtonUp(UINT nFlags, CPoint& point);
  virtual void OnMButtonDown(UINT nFlags, CPoint& point);
  virtual void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
  virtual void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags);

  /// The current tool (not a share in it), or null.
  CIE__Base* GetCurrentInputEvent() const { return m_pCurrent.get(); }
  /// How many tools are suspended.
  std::size_t GetSuspendedCount() const { return m_suspended.size(); }
  int GetFlag_DeleteCurrentEventAfterExecute() const { return m_nDeleteCurrentAfterExecute; }
  /// 1: the next ending message destroys the current tool and resumes the suspended one.
  void SetFlag_DeleteCurrentEventAfterExecute(const int& flag) { m_nDeleteCurrentAfterExecute = flag; }
  /// 1 for every pair: no tool excludes another.
  int CanExistAtSameTime(const CIE__Base* first, const CIE__Base* second) const;

  /// Makes a heap tool current, taking a share in it (a tool some std::shared_ptr already
  /// owns joins that owner group; any other tool must not be owned elsewhere); null is
  /// ignored. The current tool
  /// is suspended (pushed) when CanExistAtSameTime allows both, else destroyed
  /// (DeleteCurrentEventNow). The cursor is not updated here.
  void SetCurrentInputEvent(CIE__Base* event);
  void SetCurrentInputEvent(std::unique_ptr<CIE__Base> event) { SetCurrentInputEvent(event.release()); }
  void SetCurrentInputEvent(std::nullptr_t) {}
  /// Pushes the current tool onto the stack; it also stays current (the caller replaces
  /// it next).
  void PushCurrentInputEvent();
  /// Releases the current tool (destroying it unless a copy holds it) after its
  /// ShowDebugMessageWhenDeleted, then, in every case, SetCursor.
  void DeleteCurrentInputEvent();
  /// DeleteCurrentInputEvent, then flag 0.
  void DeleteCurrentEventNow();
  /// DeleteCurrentInputEvent, then the tool suspended last becomes current (null when
  /// none). The flag is kept, and the cursor is not set for the resumed tool.
  void DeleteCurrentEventAndPopInputEvent();
  /// Releases every suspended tool, newest first, then DeleteCurrentInputEvent.
  void DeleteAllInputEvent();
  /// The current tool's SetCursor; with no current tool, the system's arrow cursor
  /// (through the desktop hooks).
  void SetCursor() const;

 protected:
  /// Takes the tool suspended last off the stack (null when none); with activate set,
  /// DeleteCurrentEventNow and then SetCurrentInputEvent with it. Returns it.
  std::shared_ptr<CIE__Base> PopInputEvent(int activate);
  /// Suspends a heap tool (appends it to the stack), taking a share in it.
  void PushInputEvent(CIE__Base* event);

 private:
  /// A share in `event`: the one another holder already has, else a new one.
  static std::shared_ptr<CIE__Base> Adopt(CIE__Base* event);
  template <class Forward>
  void Dispatch(bool ends, Forward forward);

  int m_nDeleteCurrentAfterExecute = 0;
  std::shared_ptr<CIE__Base> m_pCurrent;
  std::deque<std::shared_ptr<CIE__Base>> m_suspended;  // a stack: pushed and popped at the back
};
