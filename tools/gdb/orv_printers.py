"""Shows the values of orvcore in gdb as what they mean.

    (gdb) source orv_printers.py

Nothing is called in the process, so core files are read as well. The texts of names and internal strings, and the
layouts that a program's own debug information may lack, are found by tables that the library holds for this purpose
(core/debugLayout.h); it needs no debug information itself. What can't be read is shown as "<...>", telling why.

A printer is a class with `to_string` and, for containers, `children`, made known by `@shows(regular expression)`.
"""
import codecs
import re

import gdb
import gdb.printing
import gdb.types

POINTER = 8
TABLES = ("orv_debug_core", "orv_debug_strings", "orv_debug_text", "orv_debug_object")
TABLE_ROW, TABLE_NAME = 40, 24
KINDS = ("Any", "Name", "Names", "UID", "Colon", "Bracket", "Types", "Template", "Method", "Mixed")
# By the number of the width: prefix, bytes of a unit, codec.
WIDTHS = {1: ("", 1, "utf-8"), 2: ("u", 2, "utf-16-le"), 3: ("U", 4, "utf-32-le")}

printers = gdb.printing.RegexpCollectionPrettyPrinter("orvcore")


class Unreadable(Exception):
    """Why a value has no meaning."""


def shows(expression):
    """Makes a class the printer of the types whose full name matches."""

    def known(printer):
        printers.add_printer(printer.__name__, expression, printer)
        return printer

    return known


# Memory


def memory(address, size):
    try:
        return bytes(gdb.selected_inferior().read_memory(address, size))
    except gdb.MemoryError:
        raise Unreadable(f"no memory at {address:#x}")


def number(address, size=4):
    return int.from_bytes(memory(address, size), "little")


def pointer(address):
    return number(address, POINTER)


class Layout:
    """The rows of the library's tables: `layout["name"]` is a number, `layout.place("name")` an address."""

    def __init__(self):
        self.rows = {}

    def forget(self, _event=None):
        self.rows = {}

    def row(self, name):
        if name not in self.rows:
            for table in TABLES:
                self.read(table)
        if name not in self.rows:
            raise Unreadable("liborvcore isn't there")
        return self.rows[name]

    def read(self, table):
        try:
            at = int(gdb.parse_and_eval("(unsigned long) &" + table))
        except gdb.error:
            return
        while True:
            name = memory(at, TABLE_NAME).split(b"\0")[0].decode()
            if not name:
                return
            self.rows[name] = (pointer(at + TABLE_NAME), number(at + TABLE_NAME + POINTER, 8))
            at += TABLE_ROW

    def __getitem__(self, name):
        return self.row(name)[1]

    def place(self, name):
        return self.row(name)[0]


layout = Layout()
for event in (gdb.events.new_objfile, gdb.events.clear_objfiles, gdb.events.exited):
    event.connect(layout.forget)


# Texts


def escaped(text):
    def one(match):
        named = {'"': '\\"', "\\": "\\\\", "\n": "\\n", "\r": "\\r", "\t": "\\t"}
        return named.get(match[0]) or f"\\{ord(match[0]):03o}"

    text = re.sub(r'["\\\x00-\x1f\x7f]', one, text)
    charset = gdb.host_charset() if hasattr(gdb, "host_charset") else gdb.parameter("host-charset")
    try:
        codecs.lookup(charset)
    except (LookupError, TypeError):
        charset = "ascii"
    # The terminal may not have the character; neither may the charset that gdb passes texts through.
    for way in (charset, gdb.target_charset()):
        text = text.encode(way, "backslashreplace").decode(way)
    return text


def quoted(address, length, width):
    """A text of so many units, cut as the elements of an array are."""
    if width not in WIDTHS:
        raise Unreadable(f"a text of width {width}")
    prefix, unit, codec = WIDTHS[width]
    limit = gdb.parameter("print elements") or length
    text = memory(address, min(length, limit) * unit).decode(codec, "backslashreplace")
    return f'{prefix}"{escaped(text)}"' + ("..." if length > limit else "")


def selector(key):
    """The text and the kind of a selector, by its key."""
    if not key:
        return "<empty>"
    bits = layout["selector.directoryBits"]
    directory = layout.place("selector.space") + layout["selector.directory"]
    part = pointer(directory + (key >> bits) * POINTER)
    entry = part and pointer(part + (key & (1 << bits) - 1) * POINTER)
    if not entry:
        raise Unreadable(f"selector {key} isn't in the space")
    kind = number(entry + layout["selector.type"])
    text = quoted(pointer(entry + layout["selector.text"]), number(entry + layout["selector.length"]), 1)
    return f"{text} {KINDS[kind] if kind < len(KINDS) else kind}"


def internal(index):
    """An internal string, by its index."""
    first, chunks = layout["strings.firstChunk"], layout["strings.chunks"]
    chunk = (index // first + 1).bit_length() - 1
    slots = pointer(layout.place("strings.chunks") + chunk * POINTER) if chunk < chunks else 0
    slot = slots and slots + (index - first * ((1 << chunk) - 1)) * layout["strings.slotBytes"]
    entry = slot and number(slot + layout["strings.slotCount"]) and pointer(slot + layout["strings.slotEntry"])
    if not entry:
        raise Unreadable(f"internal string {index} isn't held")
    width, length = number(entry + layout["strings.width"]), number(entry + layout["strings.length"])
    return f"{quoted(entry + layout['strings.text'], length, width)} #{index}"


def string(record, index):
    """A text by its record; without one it is an internal one."""
    if not record:
        return internal(index) if index else '""'
    length, capacity = number(record + layout["string.length"]), number(record + layout["string.capacity"])
    if length > capacity:
        raise Unreadable(f"damaged record at {record:#x}: {length} units in room for {capacity}")
    return quoted(record + layout["string.text"], length, number(record + layout["string.type"]))


def string_at(address):
    return string(pointer(address), number(address + POINTER))


class Printer:
    """What printers have in common: `text` may raise `Unreadable`."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        try:
            return self.text()
        except Unreadable as reason:
            return f"<{reason}>"


@shows("^ZSelector$")
class SelectorPrinter(Printer):
    """The text, then the kind."""

    def text(self):
        return selector(int(self.value["id"]))


@shows("^ZString$")
class StringPrinter(Printer):
    """The text with the prefix of its width; an internal one with its index."""

    def text(self):
        return string(int(self.value["record"]), int(self.value["index"]))


# Containers


def aligned(offset, type):
    return -(-offset // type.alignof) * type.alignof


def item_at(address, type):
    return gdb.Value(address).cast(type.pointer()).dereference()


def template_name(type):
    return re.sub("<.*", "", str(gdb.types.get_basic_type(type)))


class Container(Printer):
    """Shows the type, the number of items, and the items that `items` gives, until one can't be read."""

    def text(self):
        count = self.count()
        return f"{gdb.types.get_basic_type(self.value.type)} of {count}"

    def children(self):
        try:
            for position, item in enumerate(self.items()):
                yield f"[{position}]", item
        except Unreadable as reason:
            yield "<rest>", str(reason)

    def display_hint(self):
        return "array"


@shows("^ZArrayT<.*>$")
class ArrayPrinter(Container):
    def __init__(self, value):
        super().__init__(value)
        self.type = value.type.strip_typedefs().template_argument(0)
        self.head = value["head"]

    def count(self):
        address = int(self.head)
        if not address:
            return 0
        count, capacity = number(address), number(address + 4)
        if count > capacity:
            raise Unreadable(f"damaged block at {address:#x}: {count} items in room for {capacity}")
        return count

    def items(self):
        for position in range(self.count()):
            yield item_at(int(self.head) + aligned(12, self.type) + position * self.type.sizeof, self.type)


class Keyed(Container):
    """Items in order of adding: keys with their values, or plain ones."""

    def children(self):
        try:
            for position, item in enumerate(self.items()):
                if self.pairs:
                    yield f"key {position}", item["itemKey"]
                    yield f"value {position}", item["itemValue"]
                else:
                    yield f"[{position}]", item
        except Unreadable as reason:
            yield "<rest>", str(reason)

    def display_hint(self):
        return "map" if self.pairs else "array"


def has_field(type, name):
    return any(f.name == name or f.is_base_class and has_field(f.type.strip_typedefs(), name) for f in type.fields())


@shows("^Z(HashMap|KeyMap|SelectMap|HashSet)T<.*>$")
class MapPrinter(Keyed):
    def __init__(self, value):
        super().__init__(value)
        self.set = template_name(value.type) == "ZHashSetT"
        handle = value["values"] if self.set else value
        self.data = handle["data"]
        self.type = self.data.type.strip_typedefs().target().template_argument(1).strip_typedefs()
        self.pairs = not self.set and has_field(self.type, "itemKey")

    def count(self):
        data = int(self.data)
        return number(data + layout["map.itemCount"]) if data else 0

    def items(self):
        count, data = self.count(), int(self.data)
        if not count:
            return
        at, size = pointer(data + layout["map.items"]), number(data + layout["map.itemBytes"])
        inner = aligned(layout["map.nodeHead"], self.type)
        for position in range(count):
            item = item_at(at + position * size + inner, self.type)
            yield item["wrapped"] if self.set else item


@shows("^ZHashTreeT<.*>$")
class HashTreePrinter(Container):
    def __init__(self, value):
        super().__init__(value)
        self.type = value.type.strip_typedefs().template_argument(1)
        self.table = value["table"]

    def count(self):
        return int(self.table["count"]) if self.table else 0

    def items(self):
        node = self.table["first"] if self.table else None
        for _ in range(self.count()):
            if not node:
                raise Unreadable("the list ends early")
            yield node.cast(self.type.pointer()).dereference()
            node = node["next"]


@shows("^orv::detail::TreeNode$")
class TreeNodePrinter(Printer):
    """The links are left out; `print /r` shows them."""

    def text(self):
        return "in a tree" if int(self.value["color"]) else "in no tree"


# Types, values, objects

# By the number of the kind: bytes and reader of a plain value.
PLAIN = {
    2: "bool", 3: "signed char", 4: "unsigned char", 5: "short", 6: "unsigned short", 7: "int", 8: "unsigned int",
    9: "long long", 10: "unsigned long long", 11: "int", 12: "float", 13: "double", 14: "double",
}  # fmt: skip
SELECTOR, STRING, POINTER_KIND, FIRST_TYPE, OBJECT = 15, 16, 17, 24, 25


class MetaType:
    """A type, read from where its metatype stands."""

    def __init__(self, address):
        self.main = pointer(address + layout["metatype.mainType"])
        self.kind = number(address + layout["metatype.kind"], 1)
        data = pointer(address + layout["metatype.data"])
        if not data:
            raise Unreadable(f"no type at {address:#x}")
        key = number(data + layout["metatype.name"])
        self.name = selector(key).rsplit('"', 1)[0][1:] if key else "unnamed type"


def type_of_instance(address):
    """The type of a `ZType`; null while the library starts."""
    at = pointer(address + layout["type.metaType"])
    return MetaType(at) if at else None


def instance(address):
    """A `ZType` by its type, an object also by its own name."""
    type = type_of_instance(address)
    text = f"{type.name if type else 'typeless'} at {address:#x}"
    if type and type.kind == OBJECT:
        data = pointer(address + layout["object.data"])
        key = number(data + layout["object.selector"]) if data else 0
        if key:
            text = f"{selector(key).rsplit(' ', 1)[0]} {text}"
    return text


def plain(name, address):
    return str(item_at(address, gdb.lookup_type(name)))


@shows("^ZVariant$")
class VariantPrinter(Printer):
    """The type, then the value as its own printer shows it."""

    def text(self):
        address = int(self.value.address)
        bits, value = pointer(address), address + layout["variant.value"]
        at = bits & ~layout["variant.tags"]
        if not at:
            return f"block at {pointer(value):#x}" if pointer(value) else "null"
        type = MetaType(at)
        if not bits & layout["variant.inside"]:
            held = pointer(value)
            if not held:
                return f"{type.name} null"
            main = MetaType(type.main) if type.main else type
            if main.kind >= FIRST_TYPE:
                return instance(held)
            return f"{type.name} {held:#x}" if type.kind == POINTER_KIND else f"{type.name} at {held:#x}"
        if type.kind in PLAIN:
            return f"{type.name} {plain(PLAIN[type.kind], value)}"
        if type.kind == SELECTOR:
            return f"{type.name} {selector(number(value))}"
        if type.kind == STRING:
            return f"{type.name} {string_at(value)}"
        return f"{type.name} at {value:#x}"


@shows("^Z(Type|Object)$")
class InstancePrinter(Printer):
    """Type and name; `print /r` shows the members."""

    def text(self):
        return instance(int(self.value.address))


gdb.printing.register_pretty_printer(gdb.current_objfile(), printers, replace=True)
