#include "runtime/context.h"

#include "runtime/atom.h"

#include <QString>
#include <new>
#include <sys/mman.h>

namespace {

#ifdef QUORVANE_TINY_LIMITS
constexpr std::size_t slabObjects = 2;
#else
constexpr std::size_t slabObjects = 64;
#endif

// Behind the entries that calls are tested against lies room for what one block can push: its depth, and the
// arguments and locals of one more call. The kernel gives pages only where something is written.
constexpr std::size_t stackEntries =
    ESContext::stackSize * (1 + ESContext::maxUncounted) + ESContext::maxBlockDepth + 3 * 65536 + 1024;
constexpr std::size_t stackBytes = stackEntries * sizeof(ESValue);

// Each script call that hasn't ended leaves an entry on the stack at least; room for their records.
constexpr std::size_t frameBytes = (ESContext::stackSize + 64) * 128;

} // namespace

ESContext::ESContext(bool asks) : asksKeepRunning(asks) {
    void* memory = mmap(nullptr, stackBytes + frameBytes, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) {
        throw std::bad_alloc();
    }
    stack = static_cast<ESValue*>(memory); // zeroed, so all entries are undefined
    frames = reinterpret_cast<ESFusedFrame*>(static_cast<char*>(memory) + stackBytes);
}

ESContext::~ESContext() {
    for (const std::unique_ptr<ESObject[]>& slab : slabs_) {
        for (std::size_t i = 0; i < slabObjects; ++i) {
            slab[i].elements.release();
        }
    }
    munmap(stack, stackBytes + frameBytes);
}

void ESContext::addObjectSlab() {
    slabs_.push_back(std::make_unique<ESObject[]>(slabObjects));
    nextFree_ = slabs_.back().get();
    slabEnd_ = nextFree_ + slabObjects;
}

ESObject* ESContext::newObject(ESObject* prototype, ESClass* cls) {
    if (nextFree_ == slabEnd_) [[unlikely]] {
        addObjectSlab();
    }
    ESObject* object = nextFree_++;
    object->prototype = prototype;
    object->nativeClass = cls;
    return object;
}

ESObject* ESContext::newPlainObject() { return newObject(objectPrototype, plainClass); }

ESObject* ESContext::newScopeNode(ESObject* next, ESObject* searched) {
    ESObject* node = newObject(next, nullptr);
    node->value = objectValue(searched);
    return node;
}

ESClosure* ESContext::newClosure() { return new (arena_.allocate(sizeof(ESClosure))) ESClosure; }

std::int32_t ESContext::currentLine() const { return linePlace != nullptr ? *linePlace : line_; }

void ESContext::raiseError(ESObject* constructor, const QString& text) {
    const QString message = QString::fromLatin1("line %1: %3").arg(currentLine()).arg(text);
    const ESValue argument = atomValue(intern(message));
    throw ESException{objectValue(construct(constructor, 1, &argument))};
}

void ESContext::raiseBaseError(const char* latin1) {
    raiseError(errorConstructor, QString::fromLatin1(latin1));
}

void ESContext::raiseTypeError(const char* latin1) {
    raiseError(typeErrorConstructor, QString::fromLatin1(latin1));
}

void ESContext::raiseRangeError(const char* latin1) {
    raiseError(rangeErrorConstructor, QString::fromLatin1(latin1));
}

void ESContext::stackTooSmall() {
    throw ESFatalError{QString::fromLatin1("virtual machine stack too small")};
}
