/* A CAD program that knows the add-on by name only: loads host library and module, starts the
   module, calls every exported function, and stops it again. No drawing is open. */
#include <dlfcn.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

static void* module;
static int faults;

static void* named(const char* name) {
    void* address = dlsym(module, name);
    if (address == NULL) {
        fprintf(stderr, "no function %s\n", name);
        exit(1);
    }
    return address;
}

static void expect(const char* what, int64_t got, int64_t wanted) {
    if (got != wanted) {
        fprintf(stderr, "%s: %lld instead of %lld\n", what, (long long)got, (long long)wanted);
        ++faults;
    }
}

/* A function pointer of the wanted type from a data pointer, as POSIX has it. */
#define FUNCTION(type, name) (*(type)(intptr_t)named(name))

typedef int (*entry_point)(int, void*);
typedef int (*no_arguments)(void);
typedef int (*two_texts)(const char*, const char*);
typedef int (*one_text)(const char*);
typedef int (*background)(const char*, double, double);
typedef int (*create_material)(const char*, const char*, double, double, const char*);
typedef int64_t (*big_number)(void);
typedef const char* (*text_result)(void);
typedef void (*set_progress)(int (*)(int64_t, int64_t, void*), void*);

static int go_on(int64_t done, int64_t total, void* data) {
    (void)data;
    return done <= total;
}

static void call_all(void) {
    expect("green button without a view", FUNCTION(two_texts, "omb_green_button")("DELTA", NULL),
           -1);
    expect("the same without a code", FUNCTION(two_texts, "omb_green_button")(NULL, NULL), -1);
    expect("oem button without a view", FUNCTION(two_texts, "omb_oem_button")("zwcad", "fine.dfl"),
           -1);
    expect("code", FUNCTION(no_arguments, "get_green_button_code")(), 4);
    expect("materials without a window", FUNCTION(no_arguments, "omb_materials")(), 0);
    expect("lamps without a window", FUNCTION(no_arguments, "omb_render_ready")(), 0);
    expect("background", FUNCTION(background, "omb_set_background")("sky.png", 50, 60), 1);
    expect("no background", FUNCTION(background, "omb_set_background")(NULL, 0, 0), 1);
    expect("folder", FUNCTION(one_text, "omb_add_search_path_for_FindFile")("/x"), 1);
    expect("no folder", FUNCTION(one_text, "omb_add_search_path_for_FindFile")(NULL), 0);
    expect("new material",
           FUNCTION(create_material, "omb_CreateMaterial")("brick", "b.png", 1, 1, "/tmp"), 0);
    expect("entity", FUNCTION(two_texts, "omb_set_entity_material")("2A", "brick"), 0);
    expect("layer", FUNCTION(two_texts, "omb_set_layer_material")(NULL, NULL), 0);
    FUNCTION(set_progress, "omb_set_progress")(go_on, NULL);
    expect("extraction", FUNCTION(no_arguments, "omb_extract_batch_folder")(), -1);
    expect("an error in words", FUNCTION(text_result, "omb_last_error")()[0] != '\0', 1);
    expect("process", FUNCTION(big_number, "omb_last_process_id")(), 0);
    expect("faces", FUNCTION(big_number, "omb_last_face_count")(), 0);
    FUNCTION(set_progress, "omb_set_progress")(NULL, NULL);
}

int main(int argc, char** argv) {
    enum { start_message = 1, stop_message = 2, answer_ok = 0, interface_version = 20 };
    if (argc != 3 || dlopen(argv[1], RTLD_NOW | RTLD_GLOBAL) == NULL ||
        (module = dlopen(argv[2], RTLD_NOW)) == NULL) {
        fprintf(stderr, "plain_c_caller: %s\n", argc == 3 ? dlerror() : "HOST MODULE");
        return 1;
    }
    setenv("QORVANE_HOME", "plain_c_caller_home", 1);
    expect("version", FUNCTION(no_arguments, "acrxGetApiVersion")(), interface_version);
    expect("before the start", FUNCTION(background, "omb_set_background")("a", 1, 1), 0);
    expect("start", FUNCTION(entry_point, "acrxEntryPoint")(start_message, NULL), answer_ok);
    call_all();
    expect("stop", FUNCTION(entry_point, "acrxEntryPoint")(stop_message, NULL), answer_ok);
    expect("behind the end", FUNCTION(two_texts, "omb_green_button")("DELTA", NULL), 0);
    dlclose(module);
    return faults == 0 ? 0 : 1;
}
