// A native window of GTK 4 with one entry, which reports what is typed into it.
#include "Report.h"

#include <gtk/gtk.h>

using orlune::targets::reportFocus;
using orlune::targets::reportText;

int main() {
    g_setenv("GSK_RENDERER", "cairo", /*overwrite=*/TRUE); // there may be no GPU
    gdk_set_allowed_backends("wayland");
    g_set_prgname("app.orlune.GtkTarget");
    if (!gtk_init_check()) {
        std::fputs("gtk_target: no Wayland compositor answers\n", stderr);
        return 1;
    }
    GtkWidget* const window = gtk_window_new();
    GtkWidget* const entry = gtk_entry_new();
    gtk_window_set_default_size(GTK_WINDOW(window), 400, 60);
    gtk_window_set_title(GTK_WINDOW(window), "GTK target");
    gtk_window_set_child(GTK_WINDOW(window), entry);
    g_signal_connect(entry, "changed", G_CALLBACK(+[](GtkEditable* changed) {
                         reportText(gtk_editable_get_text(changed));
                     }),
                     nullptr);
    g_signal_connect(window, "notify::is-active", G_CALLBACK(+[](GtkWindow* changed) {
                         reportFocus(gtk_window_is_active(changed) != FALSE);
                     }),
                     nullptr);
    GMainLoop* const loop = g_main_loop_new(nullptr, /*is_running=*/FALSE);
    g_signal_connect(window, "close-request", G_CALLBACK(+[](GtkWindow*, GMainLoop* running) {
                         g_main_loop_quit(running);
                         return FALSE;
                     }),
                     loop);
    gtk_window_present(GTK_WINDOW(window));
    g_main_loop_run(loop);
    g_main_loop_unref(loop);
}
