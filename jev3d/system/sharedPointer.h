#pragma once

#include <cstdint>
#include <utility>

namespace JEV {
namespace SYSTEM {

// Deletes through the object's virtual destructor.
template <class T>
struct default_deleter {
  void operator()(T* p) const { delete p; }
};

// The reference block. Polymorphic so that a block made for a derived type
// destroys the object as that type, whatever pointer type the owner holds now.
struct ref_info {
  int32_t count = 1;
  virtual ~ref_info() = default;
  virtual void destroy() = 0;
};

template <class T, class D>
struct ref_info_impl : ref_info {
  explicit ref_info_impl(T* p) : object(p) {}
  void destroy() override { D()(object); }
  T* object;
};

// Reference-counted owner. The count is a plain integer: an owner shared between
// threads needs the protection of the container that holds it.
template <class T, class D = default_deleter<T>>
class sharedPointer {
 public:
  sharedPointer() = default;
  explicit sharedPointer(T* p) : pointer(p), info(p ? new ref_info_impl<T, D>(p) : nullptr) {}
  sharedPointer(const sharedPointer& o) : pointer(o.pointer), info(o.info) { addRef(); }
  // A pointer to a derived type shares the same block.
  template <class U, class E>
  sharedPointer(const sharedPointer<U, E>& o) : pointer(o.get()), info(o.getInfo()) {
    addRef();
  }
  virtual ~sharedPointer() { release(); }

  virtual sharedPointer& operator=(const sharedPointer& o) {
    if (this == &o || info == o.info) return *this;
    release();
    pointer = o.pointer;
    info = o.info;
    addRef();
    return *this;
  }

  // Drops this owner's share; the last one deletes the object, then the block.
  virtual void release() {
    if (info) {
      if (--info->count < 1) {
        info->destroy();
        delete info;
      }
    }
    pointer = nullptr;
    info = nullptr;
  }

  virtual T* get() const { return pointer; }
  virtual T* operator->() const { return pointer; }
  virtual T& operator*() const { return *pointer; }
  virtual bool isNull() const { return pointer == nullptr; }
  virtual int32_t useCount() const { return info ? info->count : 0; }
  ref_info* getInfo() const { return info; }

  bool operator==(const sharedPointer& o) const { return pointer == o.pointer; }
  bool operator!=(const sharedPointer& o) const { return pointer != o.pointer; }
  bool operator<(const sharedPointer& o) const { return pointer < o.pointer; }

 private:
  void addRef() {
    if (pointer && info) ++info->count;
  }

  T* pointer = nullptr;
  ref_info* info = nullptr;
};

}  // namespace SYSTEM
}  // namespace JEV
