"""What the module promises, on the device that MERO_DEVICE means."""

import faulthandler
import gc
import importlib.util
import pathlib
import pickle
import re
import subprocess
import sys
import threading
import time
import weakref

import numpy as np
import pytest
import vorn_mero as mero

SOURCE = """
kernel void scale(global float const* in, global float* out, float factor, local float* spare, float4 shift)
{ size_t i = get_global_id(0); out[i] = in[i] * factor + shift.y; }
kernel void bump(global int* v) { v[get_global_id(0)] += WIDTH; }
kernel void slow(global int* v, int turns) { for (int i = 0; i < turns; ++i) atomic_inc(v); }
"""


@pytest.fixture(scope="module")
def gpu():
    return mero.Session()


@pytest.fixture(scope="module")
def program(gpu):
    return gpu.build(SOURCE, defines={"WIDTH": 3})


def address(view):
    return np.asarray(view).ctypes.data


def natural_failures(gpu, program):
    """What a program does wrong, and the class that tells it."""
    scale, numbers = program["scale"], gpu.array(np.zeros(8, "f"))
    local, shift = mero.Local(4, "f"), np.zeros(4, "f")

    def launch(*given, **options):
        return lambda: scale(8, *given, **options)

    def complete_twice():
        event = mero.UserEvent(gpu)
        event.complete()
        event.complete()

    return [
        (mero.NoDevice, lambda: mero.Session("no such device")),
        (mero.BuildFailure, lambda: gpu.build("no kernel")),
        (mero.OptionError, lambda: gpu.build(SOURCE, defines={"A B": 1})),
        (mero.FileError, lambda: gpu.build_file(pathlib.Path("no such file"))),
        (mero.NoKernel, lambda: program["none"]),
        (mero.OrderError, complete_twice),
        (mero.BoundsError, lambda: numbers.read(np.empty(9, "f"))),
        (mero.BoundsError, lambda: numbers.part(1, 1)),
        (mero.BoundsError, lambda: gpu.empty((2**40, 2**40), "f")),
        (mero.ArgumentError, lambda: numbers.read(np.empty(2, "i4"))),
        (mero.ArgumentError, lambda: gpu.array(np.zeros(2, ">f4")).read(np.empty(2, "f"))),
        (mero.ArgumentError, lambda: scale((1, 1, 1, 1), numbers, numbers, 1, local, shift)),
        (mero.ArgumentError, launch(numbers)),
        (mero.ArgumentError, launch(numbers, numbers, np.float64(1), local, shift)),
        (mero.ArgumentError, launch(numbers, numbers, np.int32(1), local, shift)),
        (mero.ArgumentError, launch(numbers, numbers, 1e300, local, shift)),
        (mero.ArgumentError, launch(numbers, numbers, "1", local, shift)),
        (mero.ArgumentError, launch(gpu.empty(8, "i"), numbers, 1, local, shift)),
        (mero.ArgumentError, launch(shift, numbers, 1, local, shift)),
        (mero.ArgumentError, launch(numbers, numbers, 1, numbers, shift)),
        (mero.ArgumentError, launch(numbers, numbers, 1, mero.Local(4, "i"), shift)),
        (mero.ArgumentError, launch(numbers, numbers, 1, local, 1)),
        (mero.ArgumentError, lambda: program["slow"](1, gpu.empty(1, "i"), 2**31)),
        (mero.ArgumentError, lambda: program["slow"](1, gpu.empty(1, "i"), 1.5)),
        (mero.LaunchError, launch(numbers, numbers, 1, local, shift, local=3)),
        (mero.BoundsError, lambda: gpu.empty(2**60, "B")),
        (mero.common.InvalidValue, lambda: mero.check(-30)),
        (mero.common.UnknownOpenCLError, lambda: mero.check(-9999)),
        (ValueError, lambda: numbers.read(np.empty((8, 2), "f")[:, 0])),  # NumPy's own
        (BufferError, lambda: numbers.read(bytes(32))),
    ]


def test_failures_have_the_class_of_what_is_wrong(gpu, program):
    for row, (wanted, action) in enumerate(natural_failures(gpu, program)):
        with pytest.raises(Exception) as raised:
            pytest.fail(f"row {row} raises nothing: {action()}")
        assert type(raised.value) is wanted, (wanted, raised.value)
    with pytest.raises(mero.BuildFailure) as raised:
        gpu.build("no kernel", "-DX")
    assert raised.value.log and raised.value.device == gpu.device.name and "-DX" in raised.value.options
    with pytest.raises(mero.LaunchError) as raised:
        program["bump"](8, gpu.empty(8, "i"), local=3)
    assert isinstance(raised.value.__cause__, mero.common.InvalidWorkGroupSize)
    assert raised.value.__cause__.code == -54


def test_every_class_of_cxx_has_its_own_with_its_bases():
    classes = mero._exceptions
    assert len(classes) > 80
    for name, wanted in classes.items():
        with pytest.raises(wanted) as raised:
            mero._raise(name)
        assert type(raised.value) is wanted and str(raised.value)
        again = pickle.loads(pickle.dumps(raised.value))  # as it travels between processes
        assert type(again) is wanted and vars(again) == vars(raised.value)
    assert len(set(classes.values())) == len(classes)
    statuses = [code for code in range(-72, 0) if not -30 < code < -19]
    for code in statuses:
        with pytest.raises(mero.common.OpenCLError) as raised:
            mero.check(code)
        assert raised.value.code == code
    assert issubclass(mero.common.InvalidValue, mero.common.LogicError)
    assert issubclass(mero.common.OutOfResources, mero.common.RuntimeError)
    assert mero.NoDevice.__mro__[1:3] == (mero.Error, RuntimeError)
    assert mero.nq.UnknownError.__base__ is mero.nq.UnrecoverableError


def test_devices_are_chosen_and_queried(gpu):
    device = gpu.device
    assert device in mero.find_devices() and device == mero.default_device() and hash(device) == hash(mero.default_device())
    assert mero.find_devices("no such device") == []
    assert device.name in mero.list_devices() and device.name in repr(gpu)
    assert mero.find_device(device.name).type == device.type
    assert device in mero.find_devices(needs=mero.Needs.nothing)
    assert device.max_compute_units > 0 and len(device.max_work_item_sizes) == 3 and device.is_root
    assert mero.Device.from_int_ptr(device.int_ptr) == device


@pytest.mark.parametrize("code", "bBhHiIlLqQfd?e")
def test_elements_keep_their_type_and_shape(gpu, code):
    there = np.array([[0, 1, 2], [1, 0, 5]]).astype(code)
    array = gpu.array(there)
    assert (array.shape, len(array), array.itemsize, array.nbytes) == ((2, 3), 6, there.itemsize, there.nbytes)
    back = np.empty_like(there)
    assert array.read(back) is back and (back == there).all()
    if code != "e":  # unknown to memoryview
        assert np.asarray(array.read()).tolist() == there.tolist()
    array.write(there[1:], 3)
    array.write(bytes(there.itemsize))
    array.fill(1).wait()
    array.fill(there[0, 1]).wait()
    assert (array.read(back) == 1).all()


def test_transfers_copy_nothing_in_between(gpu):
    """The process grows by no second copy of what it transfers."""
    there = np.ones(2**25, "u1")
    array = gpu.array(there)
    statm = pathlib.Path("/proc/self/status")
    array.read(there)
    peak = lambda: int(statm.read_text().split("VmHWM:")[1].split()[0]) * 1024
    before = peak()
    for _ in range(3):
        array.write(there)
        array.read(there)
        with array.map("rw") as view:
            np.asarray(view)[0] = 2
    assert peak() - before < there.nbytes / 2
    assert array.read(there)[0] == 2


def test_memory_of_the_program_is_used_in_place(gpu, program):
    there = np.arange(1024, dtype="i4")
    array = gpu.array_over(there)
    program["bump"](1024, array).wait()
    with array.map("r") as view:
        if gpu.device.type == "cpu":
            assert address(view) == there.ctypes.data
        assert there.tolist() == list(range(3, 1027))
    gone = weakref.ref(there)
    program["slow"](1, array, 10**6)
    del there, array, view
    gpu.finish()
    gc.collect()
    gpu.finish()
    assert gone() is None


def test_maps_end_with_their_block(gpu):
    array = gpu.array(np.zeros((2, 4), "f"))
    with array.map() as view:
        assert view.shape == (2, 4) and not view.readonly
        np.asarray(view)[1] = 5
    with pytest.raises(ValueError):
        view[0, 0]
    with array.map("r", 4, 2) as view:
        assert view.tolist() == [5, 5] and view.readonly
    with array.map("w", 0, 0) as view:
        assert view.tolist() == []
    with pytest.raises(BufferError), array.map("w") as view:
        left = np.asarray(view)
    left[0] = 7  # still mapped
    del left, view
    gc.collect()
    assert np.asarray(array.read())[0].tolist() == [7] * 4
    with pytest.raises(mero.ArgumentError):
        array.map("x")
    with pytest.raises(BufferError):
        memoryview(array.map())


def test_kernels_take_what_they_declare(gpu, program):
    numbers, out = gpu.array(np.arange(8, dtype="f")), gpu.empty(8, np.float32)
    scale, shift = program["scale"], np.array([0, 10, 0, 0], "f")
    assert scale.name == "scale" and scale.arguments[2] == "float factor"
    assert set(program.kernel_names) == {"scale", "bump", "slow"}
    for factor in (2, 2.0, np.float32(2), np.array(2, "f")):
        out.fill(0)
        scale(8, numbers, out, factor, mero.Local(16), shift, local=4)
        assert out.read().tolist() == [2.0 * i + 10 for i in range(8)]
    out.fill(0)
    scale((4,), numbers, out, 1, mero.Local(4, "f"), shift, offset=4).wait()
    assert out.read().tolist() == [0, 0, 0, 0, 14, 15, 16, 17]
    again = gpu.build_binary(program.binary())["scale"]
    again(8, numbers, out, np.float32(3), mero.Local(4), shift).wait()
    assert out.read()[1] == 13


def test_commands_wait_and_tell_times(gpu, program):
    other = gpu.another_queue()
    numbers = gpu.array(np.zeros(4, "i4"))
    gate = mero.UserEvent(gpu)
    first = program["bump"](4, numbers, after=[gate.event])
    copied = gpu.empty(4, "i4")
    second = numbers.on(other).copy_to(copied.on(other), after=[first])
    gpu.flush()
    assert not first.done and not second.done
    gate.complete()
    mero.when_all([first, second]).wait()
    assert copied.read().tolist() == [3] * 4
    assert first.time() == first.times().running > 0 and first.times().queued >= 0
    gate = mero.UserEvent(gpu)
    late = program["bump"](4, numbers, after=[gate.event])
    gate.fail("on purpose")
    with pytest.raises((mero.Error, mero.common.Error)):
        late.wait()
    with pytest.raises(mero.Error, match="on purpose"):
        gate.event.wait()


def waiting_calls(gpu, program):
    """Calls that wait for the event that they are given."""
    array, there = gpu.empty(4, "i4"), np.zeros(4, "i4")

    def enqueue(event):
        return program["bump"](4, array, after=[event])

    def drop(event):
        session = gpu.another_queue()
        gate = array.on(session).fill(0, after=[event])
        session.flush()
        gate.wait()

    def mapped(event):
        with array.map("r", after=[event]):
            pass

    return {
        "Event.wait": lambda event: enqueue(event).wait(),
        "Event.time": lambda event: enqueue(event).time(),
        "Array.read": lambda event: array.read(there, after=[event]),
        "Array.write": lambda event: array.write(there, after=[event]),
        "Mapping": mapped,
        "Session.finish": lambda event: (enqueue(event), gpu.finish()),
        "the last reference": drop,
    }


def test_other_threads_run_while_a_call_waits(gpu, program):
    """Another thread ends each wait: a call that kept the GIL would never return."""
    faulthandler.dump_traceback_later(60, exit=True)
    for name, call in waiting_calls(gpu, program).items():
        gate = mero.UserEvent(gpu)
        other = threading.Timer(0.05, gate.complete)
        begin = time.monotonic()
        other.start()
        call(gate.event)
        assert time.monotonic() - begin >= 0.05, name
        other.join()
    faulthandler.cancel_dump_traceback_later()


def test_other_threads_run_while_a_program_builds(gpu):
    ticks, stop = [], threading.Event()

    def tick():
        while not stop.wait(0.001):
            ticks.append(time.monotonic())

    other = threading.Thread(target=tick)
    other.start()
    begin = time.monotonic()
    unlike = f"kernel void k{time.time_ns()}(global float* v) {{ " + "v[0] = sin(v[0]) + pow(v[0], v[1]);" * 40 + " }"
    gpu.build(unlike)
    end = time.monotonic()
    stop.set()
    other.join()
    inside = sum(begin < each < end for each in ticks)
    assert inside > (end - begin) / 0.1, (inside, end - begin)


def test_threads_share_a_kernel(gpu, program):
    arrays = [gpu.array(np.full(64, i, "i4")) for i in range(8)]
    bump = program["bump"]
    threads = [threading.Thread(target=lambda each=each: [bump(64, each) for _ in range(50)]) for each in arrays]
    for each in threads:
        each.start()
    for each in threads:
        each.join()
    assert [set(each.read().tolist()) for each in arrays] == [{i + 150} for i in range(8)]


def test_objects_keep_what_they_need(gpu):
    kernel = mero.Session().build(SOURCE, defines={"WIDTH": 1})["bump"]  # session and program are gone
    array = mero.Session.on_context(gpu.context.int_ptr).array(np.zeros(4, "i4"))
    part = array.part(0, 2)
    event = array.fill(7)
    del array
    gc.collect()
    event.wait()
    assert part.read().tolist() == [7, 7] and kernel.name == "bump"


def test_sub_devices_share_a_context(gpu):
    if gpu.device.max_compute_units < 2:
        pytest.skip("the device has one compute unit")
    halves = mero.sessions(gpu.device.partition_equally(gpu.device.max_compute_units // 2))
    assert len(halves) >= 2 and not halves[0].device.is_root
    assert halves[0].context.int_ptr == halves[1].context.int_ptr
    shared = halves[0].array(np.zeros(4, "i4"))
    first = halves[0].build(SOURCE, defines={"WIDTH": 1})["bump"](4, shared)
    halves[0].flush()
    halves[1].build(SOURCE, defines={"WIDTH": 2})["bump"](4, shared.on(halves[1]), after=[first]).wait()
    assert shared.read().tolist() == [3] * 4


def test_pyopencl_shares_objects(gpu, program):
    cl = pytest.importorskip("pyopencl")
    context = cl.Context.from_int_ptr(gpu.context.int_ptr, retain=True)
    queue = cl.CommandQueue.from_int_ptr(gpu.queue.int_ptr, retain=True)
    if context.devices[0].int_ptr != gpu.device.int_ptr:
        pytest.fail("PyOpenCL uses another OpenCL")
    array = gpu.array(np.arange(4, dtype="i4"))
    theirs = cl.Buffer.from_int_ptr(array.int_ptr, retain=True)
    there = np.empty(4, "i4")
    cl.enqueue_copy(queue, there, theirs)
    assert there.tolist() == [0, 1, 2, 3]
    bump = program["bump"]
    kernel = cl.Kernel.from_int_ptr(bump.int_ptr, retain=True)
    kernel.set_arg(0, theirs)
    launched = cl.enqueue_nd_range_kernel(queue, kernel, (4,), None)
    event = mero.Event.from_int_ptr(launched.int_ptr, gpu)
    event.wait()
    assert array.read().tolist() == [3, 4, 5, 6] and event.time() > 0

    mine = cl.Buffer(context, cl.mem_flags.READ_WRITE | cl.mem_flags.COPY_HOST_PTR, hostbuf=there)
    count = lambda: mine.get_info(cl.mem_info.REFERENCE_COUNT)
    assert count() == 1
    adopted = mero.Array.from_int_ptr(mine.int_ptr, gpu, "i")
    assert count() == 2 and adopted.read().tolist() == [0, 1, 2, 3]
    del adopted
    assert count() == 1
    built = cl.Program(context, "kernel void twice(global int* v) { v[get_global_id(0)] *= 2; }").build()
    mero.Program.from_int_ptr(built.int_ptr, gpu)["twice"](4, mero.Array.from_int_ptr(mine.int_ptr, gpu, "i")).wait()
    twice = built.twice
    mero.Kernel.from_int_ptr(twice.int_ptr, gpu)(4, mero.Array.from_int_ptr(mine.int_ptr, gpu, np.int32)).wait()
    cl.enqueue_copy(queue, there, mine)
    assert there.tolist() == [0, 4, 8, 12]

    before = gpu.context.reference_count
    sessions = [mero.Session.from_int_ptr(queue.int_ptr), mero.Session.on_context(context.int_ptr, gpu.device.int_ptr)]
    assert all(each.context.int_ptr == gpu.context.int_ptr for each in sessions)
    assert gpu.context.reference_count > before
    del sessions
    assert gpu.context.reference_count == before
    with pytest.raises(mero.ArgumentError):
        mero.Array.from_int_ptr(0, gpu)


LEAKS = """
import numpy as np, vorn_mero as mero
gpu = mero.Session()
there = np.zeros(8, "i4")
array = gpu.array_over(there)
kernel = gpu.build("kernel void k(global int* v) {}")["k"]
event = kernel(8, array)
with array.map() as view:
    raised = []
    try:
        kernel(8)
    except mero.ArgumentError as failure:
        raised.append(failure)
mapping = array.map()
left = mapping.__enter__()
print("ended")
"""


def test_nothing_is_left_at_exit():
    """Objects of every class live until the interpreter ends."""
    done = subprocess.run([sys.executable, "-c", LEAKS], capture_output=True, text=True, timeout=100)
    assert (done.returncode, done.stdout, done.stderr) == (0, "ended\n", "")


def test_stubs_name_everything():
    folder = pathlib.Path(mero.__file__).parent
    assert (folder / "py.typed").exists()
    for module, stub in ((mero, "__init__"), (mero.common, "common"), (mero.nq, "nq")):
        text = (folder / f"{stub}.pyi").read_text()
        missing = [name for name in dir(module) if not name.startswith("_") and name not in text]
        assert not missing
    wrong = ["-c", "import vorn_mero\nvorn_mero.Session().empty(3)"]
    for arguments, status in ((["-p", "vorn_mero"], 0), (wrong, 1)):
        done = subprocess.run([sys.executable, "-m", "mypy", "--strict", "--cache-dir=/dev/null", *arguments],
                              capture_output=True, text=True, timeout=100)
        assert done.returncode == status, done.stdout + done.stderr


def test_the_page_runs():
    page = (pathlib.Path(__file__).parents[2] / "docs" / "python.md").read_text()
    blocks = re.findall(r"(<!-- needs: (\w+) -->\n)?^```python\n(.*?)^```", page, re.MULTILINE | re.DOTALL)
    program = "\n".join(code for _, needed, code in blocks if not needed or importlib.util.find_spec(needed))
    done = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True, timeout=100)
    assert (done.returncode, done.stderr) == (0, "")
    assert "takes a floating-point number of 4 bytes, but" in done.stdout
