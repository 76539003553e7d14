// The last-consolidation file: the point reached and the messages in flight, out and in.
#include "common/LogMailFileParser.h"
#include "misc/gravacao.h"

namespace {

char letra(bool ligado) {
    return ligado ? 'S' : 'N';
}

}  // namespace

bool LogMailFileParser::createLastConsolidFile(const char* last_consolid_file) {
    if (!last_consolid_file) return false;
    Gravacao g;
    if (g.abre(last_consolid_file)) {
        char hora[32];
        std::fprintf(g.stream(), "1 %s", ctime_r(&lastConsolid, hora));
        for (const Msg* m = Lista_msg.first(); m; m = m->next) {
            // An unknown sender is "(null)"; one that the log left out is empty, as in the log.
            const char* remetente = m->sendername ? m->sendername : "(null)";
            std::fprintf(g.stream(), "\r\n%s %d %c %c %c %c %d %d %s", m->id,
                         static_cast<int>(m->size), letra(m->virus), letra(m->spam),
                         letra(m->att_blocked), letra(m->int_user), static_cast<int>(m->start_time),
                         static_cast<int>(m->last_time), remetente);
        }
        if (g.conclui()) return true;
    }
    std::perror(last_consolid_file);
    return true;
}

bool LogMailFileParser::readExtraInfo(std::FILE* fp) {
    if (!fp) return false;
    // Set once: a field that a record lacks keeps the value of the record before it. The second
    // time is not 0, so that the message of a file without records is finished from the start.
    char id[50] = {};
    char remetente[512] = {};
    char virus = 'N', spam = 'N', bloqueado = 'N', interno = 'N';
    int tamanho = 0, inicio = 0, fim = 1;
    while (!std::feof(fp) && !std::ferror(fp)) {
        // The fields read are not counted: the end of the file shows only after a record has
        // failed.
        if (std::fscanf(fp, "\r\n%49s %d %c %c %c %c %d %d %511s", id, &tamanho, &virus, &spam,
                        &bloqueado, &interno, &inicio, &fim, remetente) == EOF &&
            std::ferror(fp))
            break;
        auto m = std::make_unique<Msg>(id, 0);
        m->size = static_cast<std::uint32_t>(tamanho);
        m->start_time = inicio;
        // The last attempt becomes the end: a message carried over is finished, for the next dump,
        // unless this day's log brings it back to life.
        m->end_time = fim;
        m->virus = virus == 'S';
        m->spam = spam == 'S';
        m->att_blocked = bloqueado == 'S';
        m->int_user = interno == 'S';
        Lista_msg.putFirst(m.get());
        static_cast<void>(m.release());
    }
    return true;
}
