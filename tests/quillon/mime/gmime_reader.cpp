// Reads the mails named on the command line with GMime; prints one JSON object a line for each. All texts are Base64
// of UTF-8, so that any character reaches the test.

#include <cctype>
#include <cstdio>
#include <gmime/gmime.h>
#include <string>

namespace {

std::string coded(const char *octets, gsize size)
{
    gchar *const text = g_base64_encode(reinterpret_cast<const guchar *>(octets), size);
    std::string result = std::string("\"") + text + "\"";
    g_free(text);
    return result;
}

std::string coded(const char *text)
{
    return coded(text == nullptr ? "" : text, text == nullptr ? 0 : std::char_traits<char>::length(text));
}

std::string mailboxes(InternetAddressList *list)
{
    std::string result = "[";
    for (int i = 0; list != nullptr && i < internet_address_list_length(list); ++i) {
        InternetAddress *const address = internet_address_list_get_address(list, i);
        if (!INTERNET_ADDRESS_IS_MAILBOX(address)) {
            continue;
        }
        result += result.size() > 1 ? "," : "";
        result += "[" + coded(internet_address_get_name(address)) + "," +
                  coded(internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(address))) + "]";
    }
    return result + "]";
}

std::string contentOf(GMimePart *part)
{
    GMimeStream *const stream = g_mime_stream_mem_new();
    GMimeDataWrapper *const content = g_mime_part_get_content(part);
    if (content != nullptr) {
        g_mime_data_wrapper_write_to_stream(content, stream);
    }
    GByteArray *const bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(stream));
    std::string result(reinterpret_cast<const char *>(bytes->data), bytes->len);
    g_object_unref(stream);
    return result;
}

struct Parts {
    std::string Texts;
    std::string Files;
};

void addText(Parts &parts, GMimeObject *object, const std::string &content)
{
    const std::string kind =
        g_mime_content_type_is_type(g_mime_object_get_content_type(object), "text", "html") ? "html" : "text";
    const char *const charset = g_mime_object_get_content_type_parameter(object, "charset");
    gsize size = 0;
    gchar *const text =
        g_convert(content.data(), static_cast<gssize>(content.size()), "UTF-8", charset, nullptr, &size, nullptr);
    if (text != nullptr) {
        parts.Texts += ",\"" + kind + "\":" + coded(text, size);
        g_free(text);
    }
    parts.Texts += ",\"" + kind + "Charset\":\"" + (charset == nullptr ? "" : charset) + "\"";
}

void addFile(Parts &parts, GMimeObject *object, const std::string &content)
{
    gchar *const type = g_mime_content_type_get_mime_type(g_mime_object_get_content_type(object));
    gchar *const digest = g_compute_checksum_for_data(G_CHECKSUM_SHA256,
                                                      reinterpret_cast<const guchar *>(content.data()), content.size());
    const char *const id = g_mime_object_get_content_id(object);
    parts.Files += std::string(parts.Files.empty() ? "" : ",") +
                   "{\"name\":" + coded(g_mime_part_get_filename(GMIME_PART(object))) + ",\"type\":\"" + type +
                   "\",\"id\":\"" + (id == nullptr ? "" : id) + "\",\"sha256\":\"" + digest + "\"}";
    g_free(type);
    g_free(digest);
}

void addPart(GMimeObject * /*parent*/, GMimeObject *object, gpointer data)
{
    if (!GMIME_IS_PART(object)) {
        return;
    }
    Parts &parts = *static_cast<Parts *>(data);
    const std::string content = contentOf(GMIME_PART(object));
    if (g_mime_object_get_content_disposition(object) == nullptr) {
        addText(parts, object, content);
    } else {
        addFile(parts, object, content);
    }
}

std::string headerNames(GMimeMessage *message)
{
    GMimeHeaderList *const list = g_mime_object_get_header_list(GMIME_OBJECT(message));
    std::string result = "[";
    for (int i = 0; i < g_mime_header_list_get_count(list); ++i) {
        std::string name = g_mime_header_get_name(g_mime_header_list_get_header_at(list, i));
        for (char &c : name) {
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        result += (i == 0 ? "\"" : ",\"") + name + "\"";
    }
    return result + "]";
}

bool read(const char *path)
{
    GMimeStream *const stream = g_mime_stream_file_open(path, "rb", nullptr);
    if (stream == nullptr) {
        return false;
    }
    GMimeParser *const parser = g_mime_parser_new_with_stream(stream);
    GMimeMessage *const message = g_mime_parser_construct_message(parser, nullptr);
    if (message == nullptr) {
        return false;
    }
    Parts parts;
    if (GMIME_IS_MULTIPART(g_mime_message_get_mime_part(message))) {
        g_mime_message_foreach(message, addPart, &parts);
    } else {
        addPart(nullptr, g_mime_message_get_mime_part(message), &parts);
    }
    const std::string line = "{\"subject\":" + coded(g_mime_message_get_subject(message)) +
                             ",\"from\":" + mailboxes(g_mime_message_get_from(message)) +
                             ",\"replyTo\":" + mailboxes(g_mime_message_get_reply_to(message)) +
                             ",\"to\":" + mailboxes(g_mime_message_get_to(message)) +
                             ",\"cc\":" + mailboxes(g_mime_message_get_cc(message)) +
                             ",\"headers\":" + headerNames(message) + ",\"files\":[" + parts.Files + "]" + parts.Texts +
                             "}";
    std::puts(line.c_str());
    g_object_unref(message);
    g_object_unref(parser);
    g_object_unref(stream);
    return true;
}

} // namespace

int main(int count, char **arguments)
{
    g_mime_init();
    for (int i = 1; i < count; ++i) {
        if (!read(arguments[i])) {
            std::fprintf(stderr, "cannot read %s\n", arguments[i]);
            return 1;
        }
    }
    g_mime_shutdown();
    return 0;
}
