// A library like the many that want a little of the loader's static room for thread-local
// variables.

namespace {

thread_local int counter __attribute__((tls_model("initial-exec")));

} // namespace

// Volatile, or there would be no access that needs the room.
extern "C" __attribute__((visibility("default"))) int *vorn_room_counter()
{
    int *volatile address = &counter;
    return address;
}
