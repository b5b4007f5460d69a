/*
 * _orvvm: orvvm's vector operations as NumPy ufuncs.
 *
 * One inner loop serves every member.  NumPy hands it one-dimensional runs
 * of its operands with any strides; the loop turns each run into calls of
 * the member on contiguous arrays:
 *
 *  - operands that are contiguous are passed as they stand; the others are
 *    gathered into (or, for results, scattered from) contiguous buffers;
 *  - a run longer than a call's 32-bit count can take is split;
 *  - a K-shaped member (a constant by value) is called once per stretch of
 *    equal constants, once in all when the constant is broadcast;
 *  - a run whose result is also an input shifted by some elements (NumPy's
 *    reduce and accumulate) is taken one element at a time, in order;
 *  - an input that a result overwrites (an in-place call) is copied first.
 *
 * A few members' element results depend on their neighbours in a block
 * and on where the call ends (the last elements are a tail).  A run is
 * therefore one call wherever it can be: gathered whole up to kGather
 * elements, and cut only where its length demands, at whole multiples of
 * 128 elements (the largest block a member takes) from its start.
 *
 * Statuses become NumPy floating-point errors.  Real members report
 * through their status: the flags their arithmetic happened to raise are
 * put back as they were, and the status raises its own (overflow 12,
 * underflow 17, divide-by-zero for singularity 18, invalid for domain 19),
 * which NumPy checks after the loop under np.errstate.  A status names the
 * last warning only: when a call warns, its elements are run again one by
 * one, into scratch results, to learn every kind.  Complex members
 * always return orvStatusOk and tell of their special cases by the IEEE
 * flags alone, so theirs are left for NumPy to see.
 *
 * The GIL is released around the calls, also for the short runs where
 * NumPy itself keeps it.
 */
#define PY_SSIZE_T_CLEAN
#include <Python.h>
#define NPY_NO_DEPRECATED_API NPY_1_7_API_VERSION
#include <numpy/arrayobject.h>
#include <numpy/ufuncobject.h>

#include <fenv.h>
#include <stdint.h>
#include <string.h>

#include "orvvm.h"

/* One member as the inner loop sees it.  Operands are numbered as the
   ufunc numbers them, inputs first; cmap[i] is the operand that the
   member's i-th pointer argument takes, konst the operand passed by value
   (or -1). */
typedef struct {
    const char* name;
    OrvStatus (*call)(char* const* pointers, const void* constant, int32_t n);
    int nin, nout;
    size_t itemsize[3];
    int npointers;
    int cmap[3];
    int konst;
    int statusReports; /* a real member: the status, not the flags, reports */
    int warns;         /* it has warnings to return */
} OrvMember;

typedef struct {
    const char* name;
    const char* level;
    const char* family;
    int nin, nout, nloops;
    PyUFuncGenericFunction* funcs;
    void** data;
    const char* types;
    const char* doc;
} OrvUfunc;

/* The largest block a member's loop takes; pieces of a run start at
   multiples of it. */
enum { kRound = 128 };
/* Elements gathered at once: a run of up to kGather elements (1 MiB per
   operand at most) in one piece, as one call would take it, or blocks of
   kBlock on the stack when no memory is to be had. */
enum { kGather = 512 * kRound, kBlock = 4 * kRound };
enum { kMaxOperands = 3 };

/* The most elements one call may take: the 32-bit count's limit, or a
   smaller stand-in the tests set to see runs split.  Writable state of
   the binding, not of the library. */
static npy_intp maxCallLength = INT32_MAX;
/* Calls made, and whether the last one ran without the GIL: what the tests
   read to see the splitting and the release. */
static unsigned long long callCount;
static int lastCallWithoutGil;

static npy_intp pieceLength(void) {
    npy_intp limit = __atomic_load_n(&maxCallLength, __ATOMIC_RELAXED);
    return limit >= kRound ? limit - limit % kRound : limit;
}

static int flagOfStatus(OrvStatus status) {
    switch (status) {
    case orvStatusOk: return 0;
    case orvStatusOverflow: return FE_OVERFLOW;
    case orvStatusUnderflow: return FE_UNDERFLOW;
    case orvStatusSingularity: return FE_DIVBYZERO;
    case orvStatusDomain: return FE_INVALID;
    /* A negative status means a bad length or pointer, which the loop
       never passes; were it to happen, NumPy would report it as invalid
       rather than let it go unseen. */
    default: return FE_INVALID;
    }
}

/* One call of the member on contiguous arrays.  A call returns the last
   warning in element order only; when it warned, each element is run again
   alone, into scratch results, so that every kind of warning among the
   elements reaches NumPy, as its own functions report every kind. */
static int callMember(const OrvMember* m, char* const* pointers, const void* constant, npy_intp n) {
    OrvStatus status = m->call(pointers, constant, (int32_t)n);
    __atomic_add_fetch(&callCount, 1, __ATOMIC_RELAXED);
    __atomic_store_n(&lastCallWithoutGil, !PyGILState_Check(), __ATOMIC_RELAXED);
    int flags = flagOfStatus(status);
    if (status > 0 && n > 1) {
        _Alignas(16) char scratch[kMaxOperands][16];
        char* alone[kMaxOperands];
        for (npy_intp i = 0; i < n; ++i) {
            for (int j = 0; j < m->npointers; ++j) {
                int op = m->cmap[j];
                alone[j] = op < m->nin ? pointers[j] + i * (npy_intp)m->itemsize[op] : scratch[j];
            }
            flags |= flagOfStatus(m->call(alone, constant, 1));
        }
    }
    return flags;
}

static int overlaps(const char* a, npy_intp aBytes, const char* b, npy_intp bBytes) {
    return a < b + bBytes && b < a + aBytes;
}

/* Elements [start, start + count) of the run, with one constant.  An
   operand is used where it stands when it is contiguous; otherwise it goes
   through a buffer.  So does, for a member that can warn, an input that a
   result overwrites (an in-place call): its elements must stay readable
   for the tracing of warnings. */
static int runPiece(const OrvMember* m, char** args, npy_intp const* steps, npy_intp start, npy_intp count,
                    const void* constant) {
    int nops = m->nin + m->nout;
    int buffered[kMaxOperands] = {0, 0, 0};
    int anyBuffered = 0;
    for (int op = 0; op < nops; ++op)
        if (op != m->konst) buffered[op] = steps[op] != (npy_intp)m->itemsize[op];
    for (int in = 0; in < m->nin && m->warns; ++in) {
        if (in == m->konst || buffered[in]) continue;
        for (int out = m->nin; out < nops; ++out)
            if (!buffered[out] &&
                overlaps(args[in] + start * steps[in], count * steps[in], args[out] + start * steps[out],
                         count * steps[out]))
                buffered[in] = 1;
    }
    for (int op = 0; op < nops; ++op) anyBuffered |= buffered[op];

    /* The gathered operands of a whole run, up to kGather elements, in one
       allocation; should it fail, blocks on the stack do the same work. */
    npy_intp piece = pieceLength();
    npy_intp block = count < piece ? count : piece;
    _Alignas(16) char stackBuffers[kMaxOperands][kBlock * 16];
    char* heap = NULL;
    char* buffers[kMaxOperands] = {stackBuffers[0], stackBuffers[1], stackBuffers[2]};
    if (anyBuffered) {
        if (block > kGather) block = kGather;
        if (block > kBlock) heap = PyMem_RawMalloc((size_t)block * 16 * kMaxOperands);
        if (heap)
            for (int op = 0; op < kMaxOperands; ++op) buffers[op] = heap + (size_t)op * block * 16;
        else if (block > kBlock)
            block = kBlock;
    }
    int flags = 0;
    for (npy_intp done = 0; done < count; done += block) {
        npy_intp n = count - done < block ? count - done : block;
        char* at[kMaxOperands];
        for (int op = 0; op < nops; ++op) {
            if (op == m->konst) continue;
            size_t size = m->itemsize[op];
            char* first = args[op] + (start + done) * steps[op];
            at[op] = buffered[op] ? buffers[op] : first;
            if (buffered[op] && op < m->nin)
                for (npy_intp i = 0; i < n; ++i) memcpy(buffers[op] + i * size, first + i * steps[op], size);
        }
        char* pointers[kMaxOperands];
        for (int i = 0; i < m->npointers; ++i) pointers[i] = at[m->cmap[i]];
        flags |= callMember(m, pointers, constant, n);
        for (int op = m->nin; op < nops; ++op) {
            size_t size = m->itemsize[op];
            char* first = args[op] + (start + done) * steps[op];
            if (buffered[op])
                for (npy_intp i = 0; i < n; ++i) memcpy(first + i * steps[op], buffers[op] + i * size, size);
        }
    }
    PyMem_RawFree(heap);
    return flags;
}

/* A run with the constant operand (if any) varying: one piece per stretch
   of bitwise equal constants. */
static int runStretches(const OrvMember* m, char** args, npy_intp const* steps, npy_intp start, npy_intp count) {
    if (m->konst < 0) return runPiece(m, args, steps, start, count, NULL);
    const char* k = args[m->konst];
    npy_intp step = steps[m->konst];
    size_t size = m->itemsize[m->konst];
    if (step == 0) return runPiece(m, args, steps, start, count, k);
    int flags = 0;
    npy_intp i = start, end = start + count;
    while (i < end) {
        npy_intp j = i + 1;
        while (j < end && memcmp(k + j * step, k + i * step, size) == 0) ++j;
        flags |= runPiece(m, args, steps, i, j - i, k + i * step);
        i = j;
    }
    return flags;
}

/* Whether two operands of a run of count elements share any byte. */
static int spansOverlap(const char* a, npy_intp aStep, size_t aSize, const char* b, npy_intp bStep, size_t bSize,
                        npy_intp count) {
    const char* aLow = aStep < 0 ? a + (count - 1) * aStep : a;
    const char* bLow = bStep < 0 ? b + (count - 1) * bStep : b;
    npy_intp aBytes = (count - 1) * (aStep < 0 ? -aStep : aStep) + (npy_intp)aSize;
    npy_intp bBytes = (count - 1) * (bStep < 0 ? -bStep : bStep) + (npy_intp)bSize;
    return aLow < bLow + bBytes && bLow < aLow + aBytes;
}

static void orv_loop(char** args, npy_intp const* dimensions, npy_intp const* steps, void* data) {
    const OrvMember* m = (const OrvMember*)data;
    npy_intp count = dimensions[0];
    if (count <= 0) return;

    PyThreadState* saved = PyGILState_Check() ? PyEval_SaveThread() : NULL;
    fexcept_t flagsBefore;
    if (m->statusReports) fegetexceptflag(&flagsBefore, FE_ALL_EXCEPT);

    /* A result that is also an input shifted by some elements (NumPy's
       reduce and accumulate: each element needs the one before) is taken
       one element at a time, in order. */
    int reduction = 0;
    for (int out = m->nin; out < m->nin + m->nout; ++out) {
        if (steps[out] == 0 && count > 1) reduction = 1;
        for (int in = 0; in < m->nin; ++in)
            if (in != m->konst && !(args[in] == args[out] && steps[in] == steps[out]) &&
                spansOverlap(args[in], steps[in], m->itemsize[in], args[out], steps[out], m->itemsize[out], count))
                reduction = 1;
    }
    int flags = 0;
    if (reduction)
        for (npy_intp i = 0; i < count; ++i) flags |= runStretches(m, args, steps, i, 1);
    else
        flags = runStretches(m, args, steps, 0, count);

    if (m->statusReports) {
        fesetexceptflag(&flagsBefore, FE_ALL_EXCEPT);
        if (flags) feraiseexcept(flags);
    }
    if (saved) PyEval_RestoreThread(saved);
}

#include "orvvm_ufuncs.h"

/* "float32" or "(float32, float32)": the input types of a loop, or of the
   operands given. */
static PyObject* typeList(PyUFuncObject* ufunc, int loop, PyArrayObject** operands) {
    PyObject* names = PyList_New(0);
    for (int i = 0; names && i < ufunc->nin; ++i) {
        PyArray_Descr* d = operands ? PyArray_DESCR(operands[i])
                                    : PyArray_DescrFromType(ufunc->types[loop * ufunc->nargs + i]);
        PyObject* name = d ? PyObject_Str((PyObject*)d) : NULL;
        if (!operands) Py_XDECREF(d);
        if (!name || PyList_Append(names, name) < 0) Py_CLEAR(names);
        Py_XDECREF(name);
    }
    PyObject* comma = PyUnicode_FromString(", ");
    PyObject* joined = names && comma ? PyUnicode_Join(comma, names) : NULL;
    Py_XDECREF(names);
    Py_XDECREF(comma);
    if (!joined || ufunc->nin == 1) return joined;
    PyObject* wrapped = PyUnicode_FromFormat("(%U)", joined);
    Py_DECREF(joined);
    return wrapped;
}

/* NumPy's own choice of the loop, with a message that says which types the
   family has members for when none fits (the original error as its cause). */
static int resolveTypes(PyUFuncObject* ufunc, NPY_CASTING casting, PyArrayObject** operands, PyObject* typeTuple,
                        PyArray_Descr** dtypes) {
    if (PyUFunc_DefaultTypeResolver(ufunc, casting, operands, typeTuple, dtypes) == 0) return 0;
    if (!PyErr_ExceptionMatches(PyExc_TypeError)) return -1;
    PyObject *type, *value, *traceback;
    PyErr_Fetch(&type, &value, &traceback);
    PyErr_NormalizeException(&type, &value, &traceback);
    PyObject* given = typeList(ufunc, 0, operands);
    PyObject* taken = PyList_New(0);
    for (int l = 0; taken && l < ufunc->ntypes; ++l) {
        PyObject* loop = typeList(ufunc, l, NULL);
        if (!loop || PyList_Append(taken, loop) < 0) Py_CLEAR(taken);
        Py_XDECREF(loop);
    }
    PyObject* separator = PyUnicode_FromString("; ");
    PyObject* list = taken && separator ? PyUnicode_Join(separator, taken) : NULL;
    if (given && list)
        PyErr_Format(PyExc_TypeError, "orvvm's %s has no member for %U (nor for a type it casts to safely): "
                     "its members take %U", ufunc->name, given, list);
    Py_XDECREF(given);
    Py_XDECREF(taken);
    Py_XDECREF(separator);
    Py_XDECREF(list);
    if (!PyErr_Occurred()) {
        PyErr_Restore(type, value, traceback);
        return -1;
    }
    PyObject *newType, *newValue, *newTraceback;
    PyErr_Fetch(&newType, &newValue, &newTraceback);
    PyErr_NormalizeException(&newType, &newValue, &newTraceback);
    PyException_SetCause(newValue, value);
    Py_XDECREF(type);
    Py_XDECREF(traceback);
    PyErr_Restore(newType, newValue, newTraceback);
    return -1;
}

static PyObject* setMaxCallLength(PyObject* self, PyObject* arg) {
    (void)self;
    long long n = PyLong_AsLongLong(arg);
    if (n == -1 && PyErr_Occurred()) return NULL;
    if (n < 1 || n > INT32_MAX) {
        PyErr_SetString(PyExc_ValueError, "the call length must lie in [1, 2**31 - 1]");
        return NULL;
    }
    npy_intp old = __atomic_exchange_n(&maxCallLength, (npy_intp)n, __ATOMIC_RELAXED);
    return PyLong_FromLongLong(old);
}

static PyObject* getCallCount(PyObject* self, PyObject* unused) {
    (void)self, (void)unused;
    return PyLong_FromUnsignedLongLong(__atomic_load_n(&callCount, __ATOMIC_RELAXED));
}

static PyObject* getLastCallWithoutGil(PyObject* self, PyObject* unused) {
    (void)self, (void)unused;
    return PyBool_FromLong(__atomic_load_n(&lastCallWithoutGil, __ATOMIC_RELAXED));
}

static PyMethodDef methods[] = {
    {"_set_max_call_length", setMaxCallLength, METH_O,
     "Sets the most elements one call of the library may take (default 2**31 - 1); returns the old value."},
    {"_call_count", getCallCount, METH_NOARGS, "Calls of the library made so far."},
    {"_last_call_without_gil", getLastCallWithoutGil, METH_NOARGS,
     "Whether the last call of the library ran with the GIL released."},
    {NULL, NULL, 0, NULL},
};

static struct PyModuleDef moduleDef = {PyModuleDef_HEAD_INIT, "_orvvm",
                                       "orvvm's vector operations as NumPy ufuncs.", -1, methods,
                                       NULL, NULL, NULL, NULL};

/* ufuncs: {level: {name: ufunc}}; members: (name, level, family, input
   dtypes, member) for every loop. */
PyMODINIT_FUNC PyInit__orvvm(void) {
    import_array();
    import_umath();
    PyObject* module = PyModule_Create(&moduleDef);
    PyObject* ufuncs = PyDict_New();
    PyObject* members = PyList_New(0);
    if (!module || !ufuncs || !members) goto fail;

    for (size_t u = 0; u < sizeof orv_ufuncs / sizeof orv_ufuncs[0]; ++u) {
        const OrvUfunc* d = &orv_ufuncs[u];
        PyObject* level = PyDict_GetItemString(ufuncs, d->level);
        if (!level) {
            level = PyDict_New();
            if (!level || PyDict_SetItemString(ufuncs, d->level, level) < 0) goto fail;
            Py_DECREF(level);
        }
        PyObject* f = PyUFunc_FromFuncAndData(d->funcs, d->data, (char*)d->types, d->nloops, d->nin, d->nout,
                                              PyUFunc_None, d->name, d->doc, 0);
        if (!f) goto fail;
        ((PyUFuncObject*)f)->type_resolver = resolveTypes;
        if (PyDict_SetItemString(level, d->name, f) < 0) goto fail;
        Py_DECREF(f);
        int nargs = d->nin + d->nout;
        for (int l = 0; l < d->nloops; ++l) {
            PyObject* sig = PyTuple_New(nargs);
            if (!sig) goto fail;
            for (int a = 0; a < nargs; ++a) {
                PyObject* descr = (PyObject*)PyArray_DescrFromType(d->types[l * nargs + a]);
                if (!descr) goto fail;
                PyTuple_SET_ITEM(sig, a, descr);
            }
            PyObject* row = Py_BuildValue("(sssNs)", d->name, d->level, d->family, sig,
                                          ((const OrvMember*)d->data[l])->name);
            if (!row || PyList_Append(members, row) < 0) goto fail;
            Py_DECREF(row);
        }
    }
    const OrvLibraryVersion* v = orvvmGetLibVersion();
    if (PyModule_AddObject(module, "ufuncs", ufuncs) < 0) goto fail;
    ufuncs = NULL;
    if (PyModule_AddObject(module, "members", members) < 0) goto fail;
    members = NULL;
    if (PyModule_AddStringConstant(module, "library_version", v->versionText) < 0) goto fail;
    return module;
fail:
    Py_XDECREF(ufuncs);
    Py_XDECREF(members);
    Py_XDECREF(module);
    return NULL;
}
