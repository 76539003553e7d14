-- Messages by hour of the day (UTC), from a compact file, by DuckDB: local messages, their bytes,
-- outside messages, their bytes, spam, virus, errors. Each id submitted and ended once.

create table eventos as
select row_number() over () as n, t, status::utinyint as status, id, tipo,
    if(status = '1', bytes::bigint, null) as bytes
from read_csv(getvariable('arquivo'), delim = ' ', quote = '', escape = '', header = false,
    encoding = 'latin-1', auto_detect = false, strict_mode = false, null_padding = true,
    columns = {'t': 'varchar', 'agente': 'varchar', 'status': 'varchar', 'id': 'varchar',
        'tipo': 'varchar', 'remetente': 'varchar', 'bytes': 'varchar'})
where status in ('1', '4', '5', '6', '8', '9', '10', '11', '12', '14', '15', '18');

-- An error before the end makes the message one that failed; the latest spam or virus verdict before
-- it is counted again at the end, spam before virus.
create table mensagens as
select id, max(bytes) as bytes,
    bool_or(status = 1 and (tipo[1] = 'I' or tipo[1] = 'S' and tipo[9] = 'I')) as interna,
    min(n) filter (status = 18) as spam, min(n) filter (status = 15) as virus,
    min(n) filter (status not in (1, 4, 15, 18)) as erro
from eventos group by id having max(bytes) is not null;

create table contados as
select e.t, m.interna, m.bytes, coalesce(m.erro < e.n, false) as erro,
    coalesce(m.spam < e.n, false) as spam,
    coalesce(m.virus < e.n and (m.spam is null or m.spam > e.n), false) as virus, true as fim
from eventos e join mensagens m using (id) where e.status = 4
union all
select t, null, null, false, status = 18, status = 15, false
from eventos where status in (15, 18);

select concat_ws(' ', count(*) filter (fim and not erro and interna),
    coalesce(sum(bytes) filter (fim and not erro and interna), 0),
    count(*) filter (fim and not erro and not interna),
    coalesce(sum(bytes) filter (fim and not erro and not interna), 0),
    count(*) filter (spam and not erro), count(*) filter (virus and not erro),
    count(*) filter (erro))
from range(24) as h(hora) left join
    (select ('0x' || t)::bigint % 86400 // 3600 as hora, * exclude t from contados) using (hora)
group by hora order by hora;
